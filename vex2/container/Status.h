#pragma once

#include "vex2/framework/Language.h"

namespace vex2 {

/// What the library's operations answer: 0 for success and a negative code for failure. The values
/// are part of the interface and never change.
enum Status : int {
  kSuccess = 0,
  kPlateNotADocument = -1,  ///< a chosen study plate is no "Vex2" document
  kPlateOfOtherKind = -2,   ///< a chosen study plate's kind marker is not "Kest"
  kCancelled = -50,         ///< the file chooser was cancelled
  kReadFailed = -100,       ///< not openable for reading, no "Vex2" document, or a short read
  kWriteFailed = -200,      ///< not openable for writing, not open, or too short for a patch
  kSizeDiffers = -250,      ///< an in-place overwrite met a record of another size
  kNoSuchFrame = -260,      ///< a frame index not below the frame count
  kInvalidStatus = -261,    ///< an acquisition status that is not four characters long
  kNotFound = -300,         ///< no such component, or a record header could not be read
};

}  // namespace vex2
