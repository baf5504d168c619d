#pragma once

#include <cstdint>
#include <utility>

#include "vex2/framework/CFile.h"
#include "vex2/framework/FunctionRef.h"
#include "vex2/storage/FailedSyncs.h"
#include "vex2/storage/LastFileError.h"
#include "vex2/storage/StatusOf.h"

namespace vex2 {

/// Changes the file of a document so that a failing disk or process cannot damage the document:
/// opens the file, appends to it, changes it in place or replaces it as a whole, and remembers the
/// files whose sync failed. Works on one `CFile`, which must outlive the store. Operations that
/// return int return 0 or a negative `Status` and throw nothing, except `Rewrite`; the others throw
/// `CFileException` and `std::bad_alloc`.
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
  /// Sets the last error: the file at `Path` is refused for this reason.
  void Refuse(FileErrorReason reason, FileOperation operation = FileOperation::kOpen) noexcept;

  /// Runs `operation` and returns its status. If the system refuses something or memory runs out,
  /// returns `failure` and keeps the reason as the last error.
  int Attempt(int failure, FunctionRef<int()> operation);
  /// Runs `operation` on the open file as `Attempt` does, then closes the file even if it failed.
  int AttemptAndClose(int failure, FunctionRef<int()> operation);

  /// Opens `path` and keeps it as `Path`. Returns false on failure; the file is then closed, unless
  /// `path` was null.
  bool Open(const char* path, unsigned flags);
  /// Runs `write` with the file position at the end of the open file. If that fails, restores the
  /// length of the file.
  int WriteAtEnd(FunctionRef<int()> write);
  /// Drops the buffered bytes and truncates the file to `length` bytes, if the system permits it.
  void RestoreLength(std::uint64_t length);
  /// Changes the open file as a whole with `write`. `write` writes to a new file, which begins with
  /// at least the first `kept` bytes of the old file, and which replaces the old file if `write`
  /// succeeds. If the file cannot be replaced, `write` writes to the file itself. Returns the
  /// status of `write`. Throws `CFileException`.
  int Rewrite(std::uint64_t kept, FunctionRef<int()> write);
  /// Opens a new, empty file that replaces the file at `path` when `FinishReplacement` is called.
  /// Returns false on failure.
  bool OpenReplacement(const char* path);
  /// Puts the new file in place and forgets failed syncs of the old and the new file, so that both
  /// may be changed again: a new file may have the number of one that was deleted.
  void FinishReplacement();

  /// Writes `offset` into the header, at the offset `at`. Returns 0, or -200 if the file is not
  /// open, is shorter than a header or cannot be written.
  int PatchHeader(std::uint64_t at, std::uint64_t offset);

  /// Returns when all bytes written before are on the disk. If the sync fails, remembers the file
  /// and throws `CFileException`.
  void Barrier();
  /// Whether a sync of the open file has failed. If so, closes the file, sets the last error and,
  /// the first time, shows the user a message.
  bool RefusesChanges();

  /// Whether the open file is the one of the last `NoteCommit` and still has the same length.
  bool IsAsCommitted() const;
  void NoteCommit();

 private:
  CFile& file_;
  CString path_;
  LastFileError lastError_;
  FailedSyncs failedSyncs_;
  // The file of the last successful commit, and its length after that commit.
  FailedSyncs::File committedFile_;
  std::uint64_t committedLength_ = 0;
};

/// An object of this class marks an operation that touches the store's file, from its construction
/// to its destruction. It clears the last error, unless the operation is part of another one.
class Operation : private LastFileError::Operation {
 public:
  explicit Operation(DocumentStore& store) : LastFileError::Operation(store.Errors()) {}
};

/// Returns `offset` as documents store it. Throws `CFileException` if it does not fit in 32 bits.
std::uint32_t DocumentOffset(const CFile& file, std::uint64_t offset);
/// Writes a 32-bit number at an offset of the open file.
void WriteWordAt(CFile& file, std::uint64_t offset, std::uint32_t word);
/// Reads the 32-bit number at an offset of the file; 0 if the file ends before the end of the
/// number.
std::uint32_t WordAt(CFile& file, std::uint64_t offset);

}  // namespace vex2
