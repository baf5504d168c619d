#pragma once

#include <functional>
#include <string>

#include "vex2/framework/Language.h"

namespace vex2::lab {

/// What a save of a document that was read may lose or change.
struct SaveRules {
  bool upgradeBlocks =
      false;                 ///< data blocks of version 1, which do not read back, become version 2
  bool dropUnknown = false;  ///< records that cannot be kept may be lost by a save in place
  /// Receives what a save elsewhere leaves out: a sentence for each record, the first ones singly,
  /// and one for a run in progress.
  std::function<void(const std::string& sentence)> onLoss = [](const std::string&) {};
  /// What the caller can do when blocks are not upgraded; it is appended to the error message.
  std::string upgradeHint = "set upgradeBlocks to make it version 2";
  /// What the caller can do when records would be lost; it is appended to the error message.
  std::string dropHint = "set dropUnknown to accept that";
};

}  // namespace vex2::lab
