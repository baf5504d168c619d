#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "tools/vex/PlateChoice.h"
#include "tools/vex/Rewriting.h"

namespace vex2::tool {

/// What every command does that changes one plate of a document in place: the old document stays
/// until the new one is whole on the disk.
class Changing {
 public:
  /// Adds --dry-run and what may be lost.
  void AddOptions(CLI::App& app);

  /// Reads the document at `path`, calls `change` with the plate that was chosen, which answers
  /// what it changed, for people, and saves the document unless this is a dry run. Throws an error,
  /// and then nothing was changed.
  template <typename Change>
  std::string Apply(const std::string& path, const PlateChoice& choice,
                    const Change& change) const {
    Document document(path);
    document.RequireAtRest();
    rewriting_.Prepare(document, path);
    const Plate plate = choice.One(document);
    std::string report;
    document.Content().KeepingRawDataLast([&] { report = change(*plate.content); });
    if (!dryRun_) Rewriting::Save(document.Content(), path);
    return dryRun_ ? report + "(dry run: nothing was changed)\n" : report;
  }

 private:
  bool dryRun_ = false;
  Rewriting rewriting_;
};

}  // namespace vex2::tool
