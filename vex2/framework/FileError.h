#pragma once

#include <cstdint>

#include "vex2/framework/CString.h"
#include "vex2/framework/Language.h"

namespace vex2 {

/// An operation on a file.
enum class FileOperation : std::uint8_t {
  kNone,    ///< none, or unknown
  kOpen,    ///< finding and opening the file
  kLock,    ///< waiting for the file's lock
  kCreate,  ///< creating a backup of the file, or the file that replaces it
  kRead,
  kSeek,
  kWrite,
  kResize,
  kSync,    ///< waiting until written bytes are on the disk
  kRename,  ///< renaming the new file over the old one
};

/// Why an operation on a file failed.
enum class FileErrorReason : std::uint8_t {
  kNone,              ///< the operation did not fail, or failed for another reason than the file
  kSystem,            ///< the system refused; `FileError::systemError` says why
  kLocked,            ///< another program or manager holds the file's lock
  kNotADocument,      ///< the file does not begin with "Vex2"
  kNotOpen,           ///< the operation needs an open file, and none is open
  kNoPath,            ///< the path is null
  kNoMemory,          ///< memory ran out
  kFailedSyncBefore,  ///< an earlier sync of this file failed, so it is not changed again
};

/// Why and where an operation on a file failed.
struct FileError {
  CString path;  ///< path of the file; may be empty if memory ran out
  FileOperation operation = FileOperation::kNone;   ///< the operation that failed
  FileErrorReason reason = FileErrorReason::kNone;  ///< why it failed
  int systemError = 0;       ///< the system's error number (errno); 0 unless the system refused
  std::uint64_t offset = 0;  ///< bytes from the start of the file; 0 if none applies
};

}  // namespace vex2
