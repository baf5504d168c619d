#include "tools/vex/options/SaveOptions.h"

#include "tools/vex/Errors.h"
#include "tools/vex/options/Options.h"

namespace vex2::tool {

SaveOptions::SaveOptions() {
  rules_.onLoss = [](const std::string& sentence) { PrintLine(sentence); };
  rules_.upgradeHint = "give --upgrade to make it version 2";
  rules_.dropHint = "give --drop-unknown to accept that";
}

void SaveOptions::AddOptions(Options& options) {
  options.AddFlag("--upgrade", rules_.upgradeBlocks,
                  "Convert data blocks of version 1 to version 2");
  options.AddFlag("--drop-unknown", rules_.dropUnknown, "Save even if unknown records are lost");
}

}  // namespace vex2::tool
