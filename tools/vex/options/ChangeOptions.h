#pragma once

#include <functional>
#include <string>

#include "lab/model/DocumentChange.h"
#include "tools/vex/Lab.h"
#include "tools/vex/options/PlateOption.h"
#include "tools/vex/options/SaveOptions.h"

namespace vex2::tool {

class Options;

/// The part that all commands share that change a document in place: the old document stays until
/// the new one is complete on the disk.
class ChangeOptions {
 public:
  /// Adds --dry-run, and the options that say what may be lost.
  void AddOptions(Options& options);

  /// Printed after the changes of a dry run.
  static constexpr const char* kDryRun = "(dry run: nothing was changed)\n";

  bool IsDryRun() const { return isDryRun_; }
  /// The options that say what may be lost.
  const SaveOptions& Losses() const { return rewriting_; }

  /// Reads the document at `path`, calls `change` with it, and saves the document unless this is a
  /// dry run. `change` changes the document in memory and returns a report for people. No other
  /// command or recorder can change the document during the call. If this throws, the document is
  /// unchanged; it also throws if another program has changed the document since it was read.
  template <typename Change>
  std::string Apply(const std::string& path, const Change& change) const {
    DocumentChange changed(path, rewriting_.Rules());
    std::string report;
    changed.Change([&](Document& document) { report = change(document); });
    return Finish(report, [&] { changed.Save(); });
  }

  /// Does the same as `Apply`, but calls `change` with the plate that `plate` selects.
  template <typename Change>
  std::string ApplyToPlate(const std::string& path, const PlateOption& option,
                           const Change& change) const {
    return Apply(path, [&](Document& document) { return change(*option.One(document).content); });
  }

  /// Calls `save` unless this is a dry run. Returns the report to print.
  std::string Finish(const std::string& report, const std::function<void()>& save) const;

 private:
  bool isDryRun_ = false;
  SaveOptions rewriting_;
};

}  // namespace vex2::tool
