#include "vex2/storage/LastFileError.h"

#include <cerrno>
#include <new>

namespace vex2 {

LastFileError::Operation::Operation(LastFileError& last) : last_(last) {
  if (last_.depth_++ == 0) last_.error_ = {};
}

void LastFileError::Note(const CFileException& failure) noexcept {
  FileError error;
  error.operation = failure.GetOperation();
  error.offset = failure.GetOffset();
  // When the wait for a lock times out, the error number is this one, whose text would not help a
  // user.
  const bool isLocked =
      error.operation == FileOperation::kLock && failure.GetError() == EWOULDBLOCK;
  error.reason = isLocked ? FileErrorReason::kLocked : FileErrorReason::kSystem;
  error.systemError = isLocked ? 0 : failure.GetError();
  keep(error, failure.GetPath());
}

void LastFileError::NoteNoMemory() noexcept {
  FileError error;
  error.reason = FileErrorReason::kNoMemory;
  keep(error, "");
}

void LastFileError::Note(FileErrorReason reason, FileOperation operation,
                         const CString& path) noexcept {
  FileError error;
  error.operation = operation;
  error.reason = reason;
  keep(error, path.View());
}

void LastFileError::keep(const FileError& error, std::string_view path) noexcept {
  if (error_.reason != FileErrorReason::kNone) return;
  error_ = error;
  try {
    error_.path = CString(path);
  } catch (const std::bad_alloc&) {
    // Report the error without the path.
  }
}

}  // namespace vex2
