#include "vex2/framework/CFile.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <utility>

#include "vex2/framework/CFileReplacement.h"
#include "vex2/framework/DescribeClass.h"
#include "vex2/framework/FileSystem.h"
#include "vex2/framework/PathNames.h"

using vex2::CurrentFileSystem;
using vex2::FileOperation;

namespace {

constexpr std::int64_t kLockWaitMilliseconds = 2000;
constexpr int kLockPauseMilliseconds = 1;

// The first read after a seek fetches few bytes, and each sequential read fetches more. Reading one
// frame of a large document thus reads little more than that frame, and reading a whole document
// takes few calls.
constexpr std::size_t kFirstRead = std::size_t{16} * 1024;
constexpr std::size_t kReadGrowth = 4;

constexpr auto kMaxPosition = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());

int systemFlags(unsigned flags) {
  int result = O_RDONLY;
  if ((flags & CFile::modeReadWrite) != 0) {
    result = O_RDWR;
  } else if ((flags & CFile::modeWrite) != 0) {
    result = O_WRONLY;
  }
  if ((flags & CFile::modeCreate) != 0) result |= O_CREAT;
  return result;
}

bool hasNoLocks(int error) {
  return error == ENOLCK || error == EOPNOTSUPP || error == ENOSYS || error == EINVAL;
}

}  // namespace

CFile::CFile() = default;

CFile::~CFile() {
  try {
    CFile::Close();
  } catch (...) {
    // A caller that must know whether the write failed calls Close.
  }
}

const CRuntimeClass* CFile::ClassRecord() {
  static const CRuntimeClass record = vex2::DescribeClass<CFile>("CFile", CObject::ClassRecord());
  return &record;
}

const CRuntimeClass* CFile::GetRuntimeClass() const {
  return ClassRecord();
}

bool CFile::Open(const char* path, unsigned flags, CFileException* error) {
  Close();
  const bool writes = (flags & (modeWrite | modeReadWrite)) != 0;
  if (!openLocked(path, systemFlags(flags), writes, error)) return false;
  if ((flags & modeCreate) == 0 || (flags & modeNoTruncate) != 0 || length_ == 0) return true;
  try {
    SetLength(0);
  } catch (const CFileException& failure) {
    if (error != nullptr) *error = failure;
    Abort();
    return false;
  }
  return true;
}

bool CFile::openLocked(const char* path, int flags, bool exclusive, CFileException* error) {
  const auto refuse = [&](int number, FileOperation operation = FileOperation::kOpen) {
    if (error != nullptr) {
      *error = CFileException(number, path != nullptr ? path : "", 0, operation);
    }
    releaseHandle();
    return false;
  };
  identity_ = {};
  if (path == nullptr) return refuse(EINVAL);
  auto& files = CurrentFileSystem();
  const std::int64_t deadline = files.Milliseconds() + kLockWaitMilliseconds;
  for (;;) {
    // Without O_NONBLOCK, opening a pipe at the path of a document would block.
    handle_ = files.Open(path, flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666);
    if (handle_ == -EINTR) continue;
    if (handle_ < 0) return refuse(-std::exchange(handle_, -1));
    if (const int status = lockHandle(exclusive, deadline); status != 0) {
      return refuse(status, FileOperation::kLock);
    }
    struct stat info {};
    if (const int status = files.Stat(handle_, info); status < 0) return refuse(-status);
    if (S_ISDIR(info.st_mode)) return refuse(EISDIR);
    regular_ = S_ISREG(info.st_mode);
    length_ = regular_ ? static_cast<std::uint64_t>(info.st_size) : 0;
    identity_ = {info.st_dev, info.st_ino};
    if (isStillAt(path)) break;
    // While this call waited for the lock, a save replaced the file, so open the new one.
    releaseHandle();
    if (files.Milliseconds() > deadline) return refuse(EWOULDBLOCK, FileOperation::kLock);
  }
  path_ = path;
  position_ = 0;
  forgetBuffer();
  return true;
}

int CFile::lockHandle(bool exclusive, std::int64_t deadline) {
  auto& files = CurrentFileSystem();
  // A waiter holds the gate so that later arrivals cannot overtake it. If the gate cannot be used,
  // take the lock without it.
  bool isNext = false;
  for (;;) {
    int status = isNext ? 0 : files.EnterGate(handle_, exclusive);
    if (status != -EWOULDBLOCK && status != -EINTR) {
      isNext = true;
      status = files.Lock(handle_, exclusive);
      if (status >= 0 || hasNoLocks(-status)) {
        static_cast<void>(files.LeaveGate(handle_));
        return 0;
      }
    }
    if (status != -EINTR && status != -EWOULDBLOCK) return -status;
    if (status == -EWOULDBLOCK) {
      if (files.Milliseconds() >= deadline) return EWOULDBLOCK;
      files.Pause(kLockPauseMilliseconds);
    }
  }
}

bool CFile::isStillAt(const char* path) const {
  if (!regular_) return true;
  struct stat named {};
  if (CurrentFileSystem().StatPath(path, named) < 0) return false;
  return identity_ == Identity{named.st_dev, named.st_ino};
}

void CFile::Close() {
  if (handle_ < 0) return;
  if (replacement_ != nullptr) {
    // The replacement was not put in place: leave the old file unchanged.
    Abort();
    return;
  }
  try {
    writeOut();
  } catch (...) {
    releaseHandle();
    throw;
  }
  releaseHandle();
}

void CFile::Abort() noexcept {
  replacement_.reset();
  releaseHandle();
}

void CFile::releaseHandle() noexcept {
  if (handle_ >= 0) CurrentFileSystem().Close(handle_);
  handle_ = -1;
  buffer_.reset();
  forgetBuffer();
}

std::size_t CFile::Read(void* buffer, std::size_t count) {
  if (ReadBuffered(buffer, count)) return count;
  auto* out = static_cast<std::uint8_t*>(buffer);
  std::size_t done = 0;
  while (done < count) {
    const std::size_t left = count - done;
    const bool buffered =
        !dirty_ && position_ >= bufferStart_ && position_ - bufferStart_ < bufferUsed_;
    if (!buffered && left >= kBufferSize) {
      writeOut();
      const std::size_t got = readAt(out + done, left, position_);
      position_ += got;
      return done + got;
    }
    const auto bytes = Peek(1);
    if (bytes.empty()) break;
    const std::size_t take = std::min(left, bytes.size());
    std::memcpy(out + done, bytes.data(), take);
    done += take;
    position_ += take;
  }
  return done;
}

std::span<const std::uint8_t> CFile::Peek(std::size_t atLeast) {
  if (dirty_) writeOut();
  const bool inside = position_ >= bufferStart_ && position_ - bufferStart_ <= bufferUsed_;
  if (!inside || bufferUsed_ - (position_ - bufferStart_) < atLeast) fill(atLeast);
  const auto skip = static_cast<std::size_t>(position_ - bufferStart_);
  return {buffer_.get() + skip, bufferUsed_ - skip};
}

void CFile::fill(std::size_t atLeast) {
  useBuffer(FileOperation::kRead);
  const bool readingOn =
      bufferUsed_ != 0 && position_ >= bufferStart_ && position_ - bufferStart_ <= bufferUsed_;
  std::size_t kept = 0;
  if (readingOn) {
    const auto skip = static_cast<std::size_t>(position_ - bufferStart_);
    kept = bufferUsed_ - skip;
    std::memmove(buffer_.get(), buffer_.get() + skip, kept);
    readAhead_ = std::min(readAhead_ * kReadGrowth, kBufferSize);
  } else {
    readAhead_ = kFirstRead;
  }
  bufferStart_ = position_;
  bufferUsed_ = kept;
  const std::size_t wanted = std::min(std::max({atLeast, readAhead_, kept}), kBufferSize);
  bufferUsed_ += readAt(buffer_.get() + kept, wanted - kept, position_ + kept);
}

void CFile::useBuffer(FileOperation operation) {
  if (handle_ < 0) fail(operation, EBADF, position_);
  if (buffer_ == nullptr) buffer_.reset(new std::uint8_t[kBufferSize]);
}

std::size_t CFile::readAt(std::uint8_t* bytes, std::size_t count, std::uint64_t offset) {
  if (handle_ < 0) fail(FileOperation::kRead, EBADF, offset);
  if (!regular_ || offset >= length_) return 0;
  count = static_cast<std::size_t>(std::min<std::uint64_t>(count, length_ - offset));
  return readFrom(handle_, bytes, count, offset);
}

std::size_t CFile::readFrom(int handle, std::uint8_t* bytes, std::size_t count,
                            std::uint64_t offset) {
  std::size_t done = 0;
  while (done < count) {
    const auto got = CurrentFileSystem().ReadAt(handle, bytes + done, count - done, offset + done);
    if (got == -EINTR) continue;
    if (got < 0) fail(FileOperation::kRead, static_cast<int>(-got), offset + done);
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

void CFile::Write(const void* buffer, std::size_t count) {
  if (count == 0) return;
  if (count > kMaxPosition - position_) fail(FileOperation::kWrite, EFBIG, position_);
  const auto* bytes = static_cast<const std::uint8_t*>(buffer);
  if (!dirty_ || position_ != bufferStart_ + bufferUsed_ || bufferUsed_ + count > kBufferSize) {
    writeOut();
    forgetBuffer();
  }
  if (count >= kBufferSize) {
    writeAt(handle_, bytes, count, position_);
    length_ = std::max(length_, position_ + count);
  } else {
    useBuffer(FileOperation::kWrite);
    if (!dirty_) bufferStart_ = position_;
    std::memcpy(buffer_.get() + bufferUsed_, bytes, count);
    bufferUsed_ += count;
    dirty_ = true;
  }
  position_ += count;
}

void CFile::writeAt(int handle, const std::uint8_t* bytes, std::size_t count,
                    std::uint64_t offset) {
  if (handle < 0) fail(FileOperation::kWrite, EBADF, offset);
  std::size_t done = 0;
  while (done < count) {
    const auto put = CurrentFileSystem().WriteAt(handle, bytes + done, count - done, offset + done);
    if (put == -EINTR) continue;
    if (put <= 0)
      fail(FileOperation::kWrite, put == 0 ? EIO : static_cast<int>(-put), offset + done);
    done += static_cast<std::size_t>(put);
  }
}

void CFile::writeOut() {
  if (!dirty_) return;
  writeAt(handle_, buffer_.get(), bufferUsed_, bufferStart_);
  length_ = std::max(length_, bufferStart_ + bufferUsed_);
  forgetBuffer();
}

void CFile::forgetBuffer() noexcept {
  bufferStart_ = 0;
  bufferUsed_ = 0;
  readAhead_ = kFirstRead;
  dirty_ = false;
}

std::uint64_t CFile::Seek(std::int64_t offset, SeekPosition from) {
  if (handle_ < 0) fail(FileOperation::kSeek, EBADF, 0);
  const std::uint64_t base = from == begin ? 0 : from == current ? position_ : GetLength();
  const auto distance = static_cast<std::uint64_t>(offset);
  const bool lands =
      offset < 0 ? std::uint64_t{0} - distance <= base : distance <= kMaxPosition - base;
  if (!lands) fail(FileOperation::kSeek, EINVAL, base);
  position_ = base + distance;
  return position_;
}

std::uint64_t CFile::GetPosition() const {
  return position_;
}

std::uint64_t CFile::GetLength() const {
  return dirty_ ? std::max(length_, bufferStart_ + bufferUsed_) : length_;
}

std::uint64_t CFile::GetRemaining() const {
  const std::uint64_t length = GetLength();
  return position_ < length ? length - position_ : 0;
}

void CFile::SetLength(std::uint64_t length) {
  if (handle_ < 0) fail(FileOperation::kResize, EBADF, length);
  writeOut();
  forgetBuffer();
  if (!regular_) return;
  if (length > kMaxPosition) fail(FileOperation::kResize, EFBIG, length);
  int status = 0;
  do {
    status = CurrentFileSystem().Truncate(handle_, length);
  } while (status == -EINTR);
  if (status < 0) fail(FileOperation::kResize, -status, length);
  length_ = length;
}

void CFile::Flush() {
  writeOut();
}

void CFile::SyncData() {
  if (handle_ < 0) fail(FileOperation::kSync, EBADF, position_);
  writeOut();
  int status = 0;
  do {
    status = CurrentFileSystem().SyncData(handle_);
  } while (status == -EINTR);
  if (status < 0 && regular_) fail(FileOperation::kSync, -status, position_);
}

CString CFile::GetFileName() const {
  return CString(vex2::FileNameOf(path_));
}

CString CFile::GetFileTitle() const {
  return CString(vex2::FileTitleOf(path_));
}

CString CFile::GetFilePath() const {
  return CString(std::string_view(path_));
}

bool CFile::GetStatus(CFileStatus& status) const {
  struct stat info {};
  if (handle_ < 0 || CurrentFileSystem().Stat(handle_, info) < 0) return false;
  status.modificationTime = CTime(info.st_mtime);
  status.size = static_cast<std::uint64_t>(info.st_size);
  status.fullName = GetFilePath();
  return true;
}

void CFile::fail(FileOperation operation, int error, std::uint64_t offset) const {
  throw CFileException(error, path_, offset, operation);
}
