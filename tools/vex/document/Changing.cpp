#include "tools/vex/document/Changing.h"

#include <CLI/CLI.hpp>

namespace vex2::tool {

void Changing::AddOptions(CLI::App& app) {
  app.add_flag("--dry-run", isDryRun_, "Say what would change, and change nothing");
  rewriting_.AddOptions(app);
}

std::string Changing::Finish(Vex2FileManager& document, const std::string& path,
                             const std::string& report) const {
  if (isDryRun_) return report + kDryRun;
  Rewriting::Save(document, path);
  return report;
}

}  // namespace vex2::tool
