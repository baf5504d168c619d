#include "tools/vex/files/Changing.h"

#include "tools/vex/Options.h"

namespace vex2::tool {

void Changing::AddOptions(Options& options) {
  options.AddFlag("--dry-run", isDryRun_, "Say what would change, and change nothing");
  rewriting_.AddOptions(options);
}

std::string Changing::Finish(DocumentFile& document, const std::string& path,
                             const std::string& report) const {
  if (isDryRun_) return report + kDryRun;
  SaveDocument(document, path);
  return report;
}

}  // namespace vex2::tool
