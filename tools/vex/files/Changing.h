#pragma once

#include <functional>
#include <string>

#include "lab/model/DocumentChange.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/PlateOption.h"
#include "tools/vex/files/Rewriting.h"

namespace vex2::tool {

class Options;

/// What every command does that changes a document in place: the old document stays until the new
/// one is whole on the disk.
class Changing {
 public:
  /// Adds --dry-run and what may be lost.
  void AddOptions(Options& options);

  /// What is said behind the changes that were not made.
  static constexpr const char* kDryRun = "(dry run: nothing was changed)\n";

  bool IsDryRun() const { return isDryRun_; }
  /// What may be lost.
  const Rewriting& Losses() const { return rewriting_; }

  /// Reads the document at `path`, calls `change` with it, which changes what the document holds
  /// and answers what it changed, for people, and saves the document unless this is a dry run. No
  /// other command and no recorder changes the document meanwhile. Throws an error, also when
  /// another program has changed the document since it was read, and then nothing was changed.
  template <typename Change>
  std::string Apply(const std::string& path, const Change& change) const {
    DocumentChange changed(path, rewriting_.Rules());
    std::string report;
    changed.Change([&](Document& document) { report = change(document); });
    return Finish(report, [&] { changed.Save(); });
  }

  /// Does the same, and hands `change` the plate of the document that was chosen.
  template <typename Change>
  std::string ApplyToPlate(const std::string& path, const PlateOption& option,
                           const Change& change) const {
    return Apply(path, [&](Document& document) { return change(*option.One(document).content); });
  }

  /// Calls `save` unless this is a dry run; answers what to report.
  std::string Finish(const std::string& report, const std::function<void()>& save) const;

 private:
  bool isDryRun_ = false;
  Rewriting rewriting_;
};

}  // namespace vex2::tool
