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
  kReadFailed = -100,       ///< a file that cannot be read, is no "Vex2" document or ends too early
  kWriteFailed = -200,      ///< a file that cannot be written, is not open or is too short to patch
  kSizeDiffers = -250,      ///< the record to overwrite in place has another size
  kNoSuchFrame = -260,      ///< the frame index is not below the frame count
  kInvalidStatus = -261,    ///< an acquisition status that is not four characters long
  kNotFound = -300,         ///< no such component, or a record header could not be read
};

}  // namespace vex2
