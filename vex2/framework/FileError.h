#pragma once

#include <cstdint>

#include "vex2/framework/CString.h"
#include "vex2/framework/Language.h"

namespace vex2 {

/// What was being done to a file.
enum class FileOperation : std::uint8_t {
  kNone,    ///< nothing, or it is not known
  kOpen,    ///< finding and opening it
  kLock,    ///< waiting for its lock
  kCreate,  ///< making the new file that is to take its place, or its backup
  kRead,
  kSeek,
  kWrite,
  kResize,
  kSync,    ///< waiting until what was written is on the disk
  kRename,  ///< putting the new file in its place
};

/// Why an operation on a file failed.
enum class FileErrorReason : std::uint8_t {
  kNone,              ///< it did not, or for another reason than its file
  kSystem,            ///< the system refused; `FileError::systemError` says why
  kLocked,            ///< another program or manager holds the file's lock
  kNotADocument,      ///< the file is no "Vex2" document
  kNotOpen,           ///< the operation works on the open file, and none is open
  kNoPath,            ///< the path is null
  kNoMemory,          ///< memory ran out
  kFailedSyncBefore,  ///< the disk failed to store an earlier change, so nothing more is written
};

/// What kept an operation on a file from success.
struct FileError {
  CString path;  ///< of the file concerned; empty where memory ran out, too
  FileOperation operation = FileOperation::kNone;
  FileErrorReason reason = FileErrorReason::kNone;
  int systemError = 0;       ///< the system's error number (errno); 0 unless the system refused
  std::uint64_t offset = 0;  ///< where in the file, in bytes from its start; 0 where none applies
};

}  // namespace vex2
