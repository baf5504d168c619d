#include "tools/vex/options/ChangeOptions.h"

#include "tools/vex/Interrupts.h"
#include "tools/vex/options/Options.h"

namespace vex2::tool {

void ChangeOptions::AddOptions(Options& options) {
  options.AddFlag("--dry-run", isDryRun_, "Print what would change, and change nothing");
  rewriting_.AddOptions(options);
}

std::string ChangeOptions::Finish(const std::string& report,
                                  const std::function<void()>& save) const {
  if (isDryRun_) return report + kDryRun;
  // If the user interrupts the command from here on, the path holds the new document or the old
  // one, and no temporary file remains.
  const Interrupts interrupts;
  save();
  return report;
}

}  // namespace vex2::tool
