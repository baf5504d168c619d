#pragma once

#include <string>

#include "tools/vex/document/DocumentPlates.h"
#include "tools/vex/document/Rewriting.h"

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

  /// Calls `change`, which changes what `document` holds and answers what it changed, for people,
  /// and saves the document unless this is a dry run. Throws an error, and then nothing was
  /// changed.
  template <typename Change>
  std::string Apply(Document& document, const Change& change) const {
    document.RequireAtRest();
    rewriting_.Prepare(document, document.Path());
    std::string report;
    document.Content().KeepingRawDataLast([&] { report = change(); });
    return Finish(document.Content(), document.Path(), report);
  }

  /// The same for the document at `path`, of which `change` is handed the plate that was chosen.
  template <typename Change>
  std::string ApplyToPlate(const std::string& path, const PlateOption& option,
                           const Change& change) const {
    Document document(path);
    return Apply(document, [&] { return change(*option.One(document).content); });
  }

  /// Saves a document that was changed, or made, unless this is a dry run; answers what to report.
  std::string Finish(Vex2FileManager& document, const std::string& path,
                     const std::string& report) const;

 private:
  bool isDryRun_ = false;
  Rewriting rewriting_;
};

}  // namespace vex2::tool
