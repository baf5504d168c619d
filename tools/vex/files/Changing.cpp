#include "tools/vex/files/Changing.h"

#include "tools/vex/Options.h"
#include "tools/vex/files/Interrupts.h"

namespace vex2::tool {

void Changing::AddOptions(Options& options) {
  options.AddFlag("--dry-run", isDryRun_, "Print what would change, and change nothing");
  rewriting_.AddOptions(options);
}

std::string Changing::Finish(const std::string& report, const std::function<void()>& save) const {
  if (isDryRun_) return report + kDryRun;
  // Who ends the command here gets the new document or the old one, and no temporary file.
  const Interrupts interrupts;
  save();
  return report;
}

}  // namespace vex2::tool
