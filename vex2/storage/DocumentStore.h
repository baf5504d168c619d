#pragma once

#include <cstdint>
#include <utility>

#include "vex2/framework/CFile.h"
#include "vex2/framework/FunctionRef.h"
#include "vex2/storage/FailedSyncs.h"
#include "vex2/storage/Guarded.h"
#include "vex2/storage/LastFileError.h"

namespace vex2 {

/// Keeps the document in a file whole when a disk or a process fails: opens the file, appends to
/// it, changes it in place or replaces it as a whole, and knows which files' syncs have failed.
/// Works on one `CFile`, which must live as long. Operations that return int return 0 or a negative
/// `Status` and throw nothing; the others throw `CFileException` and `std::bad_alloc`.
class DocumentStore {
 public:
  explicit DocumentStore(CFile& file) : file_(file) {}
  DocumentStore(const DocumentStore&) = delete;
  DocumentStore& operator=(const DocumentStore&) = delete;

  CFile& File() { return file_; }

  /// The path that was last opened or set.
  const CString& Path() const { return path_; }
  void SetPath(CString path) { path_ = std::move(path); }

  LastFileError& Errors() { return lastError_; }
  const LastFileError& Errors() const { return lastError_; }
  /// Keeps as the last error that the file at `Path` is refused for this reason.
  void Refuse(FileErrorReason reason, FileOperation operation = FileOperation::kOpen) noexcept;

  /// Runs an operation. Refusals of the system and memory that runs out become `failure`, and the
  /// last error.
  int Attempt(int failure, FunctionRef<int()> operation);
  /// Runs an operation on the open file as `Attempt` does, and closes the file afterwards.
  int AttemptAndClose(int failure, FunctionRef<int()> operation);

  /// Opens `path` and keeps it. False on failure, and then the file is closed.
  bool Open(const char* path, unsigned flags);
  /// Runs `write` with the position at the open file's end; when it fails, that is where it was.
  int WriteAtEnd(FunctionRef<int()> write);
  /// Cuts the file to this length, even if something half written is still buffered.
  void RestoreLength(std::uint64_t length);
  /// Changes the open file with `write`, as a whole: what it is given has the first `kept` bytes of
  /// the file at least, and takes its place when all is written. Where that cannot serve it is the
  /// file itself.
  int Rewrite(std::uint64_t kept, FunctionRef<int()> write);
  /// Opens an empty file that takes the place of `path` when `FinishReplacement` is called. False
  /// on failure.
  bool OpenReplacement(const char* path);
  /// After this both files may be changed again: a new file may have the number of one that is
  /// gone.
  void FinishReplacement();

  /// Writes one of the header's offsets. -200 when the file is not open, shorter than a header or
  /// cannot be written.
  int PatchHeader(std::uint64_t at, std::uint64_t offset);

  /// Returns when all that was written is on the disk. Remembers the file when it fails.
  void Barrier();
  /// True, with the file closed and the user told, when a sync of the open file has failed.
  bool RefusesChanges();

  /// Whether the open file is as `NoteCommit` found it.
  bool IsAsCommitted() const;
  void NoteCommit();

 private:
  CFile& file_;
  CString path_;
  LastFileError lastError_;
  FailedSyncs failedSyncs_;
  // What the last commit that succeeded left: which file, and how long.
  FailedSyncs::File committedFile_;
  std::uint64_t committedLength_ = 0;
};

/// An operation that touches the store's file, for as long as this lives: the last error is its
/// own, or that of the operation that it is a part of.
class Operation : private LastFileError::Operation {
 public:
  explicit Operation(DocumentStore& store) : LastFileError::Operation(store.Errors()) {}
};

/// An offset as documents store it. Throws `CFileException` where 32 bits do not hold it.
std::uint32_t DocumentOffset(const CFile& file, std::uint64_t offset);
/// Writes a number at an offset of the open file.
void WriteWordAt(CFile& file, std::uint64_t offset, std::uint32_t word);
/// Reads it; 0 where the file ends before.
std::uint32_t WordAt(CFile& file, std::uint64_t offset);

}  // namespace vex2
