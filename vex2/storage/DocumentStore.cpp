#include "vex2/storage/DocumentStore.h"

#include <cerrno>
#include <limits>
#include <string>

#include "vex2/container/Status.h"
#include "vex2/format/Encoding.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/framework/Host.h"

namespace vex2 {

void DocumentStore::Refuse(FileErrorReason reason, FileOperation operation) noexcept {
  lastError_.Note(reason, operation, path_);
}

int DocumentStore::Attempt(int failure, FunctionRef<int()> operation) {
  return StatusOf(failure, operation, &lastError_);
}

int DocumentStore::AttemptAndClose(int failure, FunctionRef<int()> operation) {
  const int status = Attempt(failure, [&] {
    const int result = operation();
    file_.Close();
    return result;
  });
  file_.Abort();
  return status;
}

bool DocumentStore::Open(const char* path, unsigned flags) {
  if (path == nullptr) {
    lastError_.Note(FileErrorReason::kNoPath, FileOperation::kOpen, CString());
    return false;
  }
  const int opened = Attempt(0, [&] {
    // `path` may point to the characters of `path_`, so copy it first.
    const CString kept(path);
    path_ = kept;
    CFileException refusal;
    if (file_.Open(kept.GetString(), flags, &refusal)) return 1;
    lastError_.Note(refusal);
    return 0;
  });
  // If memory ran out half-way, the file must not stay open and locked.
  if (opened == 0) file_.Abort();
  return opened == 1;
}

int DocumentStore::WriteAtEnd(FunctionRef<int()> write) {
  const std::uint64_t before = file_.GetLength();
  const int status = Attempt(kWriteFailed, [&] {
    file_.SeekToEnd();
    const int result = write();
    file_.Flush();
    return result;
  });
  if (status != kSuccess) RestoreLength(before);
  return status;
}

void DocumentStore::RestoreLength(std::uint64_t length) {
  file_.DiscardBuffer();
  // If the system refuses even this, the bytes of an incomplete record stay after the last whole
  // one.
  static_cast<void>(Attempt(kWriteFailed, [&] {
    file_.SetLength(length);
    return kSuccess;
  }));
}

int DocumentStore::Rewrite(std::uint64_t kept, FunctionRef<int()> write) {
  const bool replaces = file_.ReplaceOpenFile();
  if (replaces) file_.CopyReplaced(kept);
  const int status = write();
  if (status != kSuccess) return status;
  if (replaces) {
    FinishReplacement();
  } else {
    Barrier();
  }
  return kSuccess;
}

bool DocumentStore::OpenReplacement(const char* path) {
  CFileException refusal;
  if (file_.OpenReplacement(path, &refusal)) return true;
  lastError_.Note(refusal);
  return false;
}

void DocumentStore::FinishReplacement() {
  failedSyncs_.Remove(file_.CloseReplacement());
  failedSyncs_.Remove(file_.GetIdentity());
}

int DocumentStore::PatchHeader(std::uint64_t at, std::uint64_t offset) {
  const Operation operation(*this);
  if (!file_.IsOpen()) Refuse(FileErrorReason::kNotOpen, FileOperation::kWrite);
  if (!file_.IsOpen() || file_.GetLength() < HeaderLayout::kSize) return kWriteFailed;
  return Attempt(kWriteFailed, [&] {
    WriteWordAt(file_, at, DocumentOffset(file_, offset));
    return kSuccess;
  });
}

void DocumentStore::Barrier() {
  // Reserve first, so that recording a failed sync cannot itself run out of memory.
  failedSyncs_.Reserve();
  file_.Flush();  // a refused write is no failed sync: the caller gets the error and can retry
  try {
    file_.SyncData();
  } catch (const CFileException&) {
    failedSyncs_.Add(file_.GetIdentity());
    throw;
  }
}

bool DocumentStore::RefusesChanges() {
  const FailedSyncs::File open = file_.GetIdentity();
  if (!failedSyncs_.Contains(open)) return false;
  file_.Abort();
  Refuse(FileErrorReason::kFailedSyncBefore, FileOperation::kSync);
  static_cast<void>(Attempt(kWriteFailed, [&] {
    const std::string text = "The disk failed to store a change to " + std::string(path_.View()) +
                             ". Nothing more is written into that file. Please save the document "
                             "under another name.";
    // Show the message once: a run that continues would show it with every frame.
    if (failedSyncs_.ExchangeTold(open)) {
      GetHost()->Trace(text + "\n");
    } else {
      GetHost()->ShowMessage(text);
    }
    return kSuccess;
  }));
  return true;
}

bool DocumentStore::IsAsCommitted() const {
  return file_.GetIdentity() == committedFile_ && file_.GetLength() == committedLength_;
}

void DocumentStore::NoteCommit() {
  committedFile_ = file_.GetIdentity();
  committedLength_ = file_.GetLength();
}

std::uint32_t DocumentOffset(const CFile& file, std::uint64_t offset) {
  if (offset > std::numeric_limits<std::uint32_t>::max()) {
    throw CFileException(EFBIG, file.GetFilePath().GetString(), offset, FileOperation::kWrite);
  }
  return static_cast<std::uint32_t>(offset);
}

void WriteWordAt(CFile& file, std::uint64_t offset, std::uint32_t word) {
  file.Seek(static_cast<std::int64_t>(offset), CFile::begin);
  WriteField(file, word);
}

std::uint32_t WordAt(CFile& file, std::uint64_t offset) {
  std::uint32_t word = 0;
  file.Seek(static_cast<std::int64_t>(offset), CFile::begin);
  static_cast<void>(ReadField(file, word));
  return word;
}

}  // namespace vex2
