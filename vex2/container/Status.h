#pragma once

#include "vex2/framework/Language.h"

namespace vex2 {

/// The status that operations of the library return: 0 for success, a negative code for failure.
/// The values are part of the interface and never change.
enum Status : int {
  kSuccess = 0,
  kPlateNotADocument = -1,  ///< a chosen study plate is not a "Vex2" document
  kPlateOfOtherKind = -2,   ///< a chosen study plate's kind marker is not "Kest"
  kCancelled = -50,         ///< the file chooser was cancelled
  kReadFailed = -100,       ///< not openable for reading, not a "Vex2" document, or a short read
  kWriteFailed = -200,      ///< not openable for writing, not open, or too short for a patch
  kSizeDiffers = -250,      ///< the record to overwrite in place has another size
  kNoSuchFrame = -260,      ///< a frame index not below the frame count
  kInvalidStatus = -261,    ///< an acquisition status that is not four characters long
  kNotFound = -300,         ///< no such component, or a record header could not be read
};

}  // namespace vex2
