#pragma once

#include <functional>
#include <string>

#include "vex2/framework/Language.h"

namespace vex2::lab {

/// What a save of a document may lose or change.
struct SaveRules {
  bool upgradeBlocks =
      false;  ///< data blocks of version 1, which could not be read back, become version 2
  bool dropUnknown = false;  ///< a save in place may lose the records that the library cannot keep
  /// Called with sentences about what a save to another file leaves out, and about a run in
  /// progress. The first records get one sentence each, and all others one together.
  std::function<void(const std::string& sentence)> onLoss = [](const std::string&) {};
  /// The advice in the error about blocks of version 1, if `upgradeBlocks` is false.
  std::string upgradeHint = "set upgradeBlocks to make it version 2";
  /// The advice in the error about records that would be lost, if `dropUnknown` is false.
  std::string dropHint = "set dropUnknown to accept that";
};

}  // namespace vex2::lab
