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
  // Waiting for a lock ends with this number, which says nothing to people.
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
    // The path is what can be done without.
  }
}

}  // namespace vex2
