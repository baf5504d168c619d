#include "tools/vex/Changing.h"

namespace vex2::tool {

void Changing::AddOptions(CLI::App& app) {
  app.add_flag("--dry-run", dryRun_, "Say what would change, and change nothing");
  rewriting_.AddOptions(app);
}

}  // namespace vex2::tool
