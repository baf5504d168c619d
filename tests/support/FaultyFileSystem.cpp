#include "tests/support/FaultyFileSystem.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <new>
#include <utility>

namespace vex2::test {
namespace {

bool isInterruptible(FileCall kind) {
  switch (kind) {
    case FileCall::open:
    case FileCall::createNew:
    case FileCall::read:
    case FileCall::write:
    case FileCall::truncate:
    case FileCall::syncData:
    case FileCall::syncAll:
    case FileCall::lock:
      return true;
    default:
      return false;
  }
}

void die() {
  ::kill(::getpid(), SIGKILL);
  for (;;) ::pause();
}

}  // namespace

FaultyFileSystem::FaultyFileSystem() : before_(SetFileSystem(this)) {}

FaultyFileSystem::~FaultyFileSystem() {
  SetFileSystem(before_);
}

void FaultyFileSystem::FailCall(int number, int error, bool fromThenOn) {
  FailCalls(number, fromThenOn ? std::numeric_limits<int>::max() : 1, error);
}

void FaultyFileSystem::FailCalls(int number, int count, int error) {
  failAt_ = number;
  failCount_ = count;
  error_ = error;
}

void FaultyFileSystem::FailKind(FileCall kind, int error, int after, bool once) {
  failing_[kind] = {error, after, once};
}

void FaultyFileSystem::Shorten(std::size_t bytes, bool interrupt) {
  most_ = bytes;
  interrupts_ = interrupt;
  interruptNow_ = false;
}

void FaultyFileSystem::KillAt(int number, Moment moment) {
  killAt_ = number;
  moment_ = moment;
}

void FaultyFileSystem::Restart() {
  failAt_ = -1;
  killAt_ = -1;
  failing_.clear();
  writersError_ = 0;
  readersError_ = 0;
  Shorten(kNoLimit, false);
  skipsSyncs_ = false;
  keepsBytes_ = false;
  log_.clear();
  calls_ = 0;
  hit_ = false;
}

std::string FaultyFileSystem::Changes() const {
  static const std::map<FileCall, char> letters = {
      {FileCall::lock, 'L'},     {FileCall::write, 'W'},   {FileCall::truncate, 'T'},
      {FileCall::syncData, 'D'}, {FileCall::syncAll, 'S'}, {FileCall::rename, 'R'}};
  std::string changes;
  for (const FileOperation& operation : log_) {
    const auto letter = letters.find(operation.call);
    if (letter != letters.end() && operation.result != -EINTR) changes += letter->second;
  }
  return changes;
}

bool FaultyFileSystem::WasRefused(FileCall kind) const {
  return std::any_of(log_.begin(), log_.end(), [kind](const FileOperation& operation) {
    return operation.call == kind && operation.result < 0 && operation.result != -EINTR;
  });
}

// Returns 0, or the negated error that the call must return instead of being executed.
int FaultyFileSystem::fault(FileCall kind) {
  if (interrupts_ && isInterruptible(kind)) {
    interruptNow_ = !interruptNow_;
    if (interruptNow_) return -EINTR;
  }
  const int number = calls_++;
  const bool struck = failAt_ >= 0 && number >= failAt_ && number - failAt_ < failCount_;
  const int error = struck ? error_ : faultOfKind(kind);
  if (error == 0) return 0;
  hit_ = true;
  if (error == kNoMemory) throw std::bad_alloc();
  return -error;
}

int FaultyFileSystem::faultOfKind(FileCall kind) {
  const auto found = failing_.find(kind);
  if (found == failing_.end() || found->second.after-- > 0) return 0;
  found->second.after = 0;
  const int error = found->second.error;
  if (found->second.once) failing_.erase(found);
  return error;
}

std::size_t FaultyFileSystem::portion(std::size_t count) const {
  return std::min(isKilled(calls_ - 1, Moment::halfway) ? count / 2 : count, most_);
}

template <typename Call>
auto FaultyFileSystem::stage(FileOperation operation, Call call) -> decltype(call()) {
  decltype(call()) result = fault(operation.call);
  if (result == 0) {
    // A call may consist of other calls, which are counted as well.
    const int number = calls_ - 1;
    if (isKilled(number, Moment::before)) die();
    result = call();
    if (isKilled(number, Moment::after) || isKilled(number, Moment::halfway)) die();
  }
  operation.result = result;
  log_.push_back(std::move(operation));
  return result;
}

int FaultyFileSystem::Open(const char* path, int flags, mode_t mode) {
  const bool writes = (flags & O_ACCMODE) != O_RDONLY;
  const bool reads = (flags & O_ACCMODE) != O_WRONLY;
  const FileCall kind = (flags & O_EXCL) != 0 ? FileCall::createNew : FileCall::open;
  return stage({.call = kind, .path = path}, [&] {
    if (writersError_ != 0 && writes) return -writersError_;
    if (readersError_ != 0 && reads) return -readersError_;
    const int file = FileSystem::Open(path, flags, mode);
    if (file >= 0) paths_[file] = path;
    return file;
  });
}

int FaultyFileSystem::Close(int file) {
  log_.push_back({.call = FileCall::close, .path = paths_[file]});
  paths_.erase(file);
  return FileSystem::Close(file);
}

ssize_t FaultyFileSystem::ReadAt(int file, void* bytes, std::size_t count, std::uint64_t offset) {
  return stage({.call = FileCall::read, .path = paths_[file], .offset = offset, .count = count},
               [&] { return FileSystem::ReadAt(file, bytes, portion(count), offset); });
}

ssize_t FaultyFileSystem::WriteAt(int file, const void* bytes, std::size_t count,
                                  std::uint64_t offset) {
  FileOperation operation{
      .call = FileCall::write, .path = paths_[file], .offset = offset, .count = count};
  if (keepsBytes_) {
    const auto* first = static_cast<const std::uint8_t*>(bytes);
    operation.bytes.assign(first, first + std::min(count, most_));
  }
  return stage(std::move(operation),
               [&] { return FileSystem::WriteAt(file, bytes, portion(count), offset); });
}

int FaultyFileSystem::Truncate(int file, std::uint64_t length) {
  return stage({.call = FileCall::truncate, .path = paths_[file], .offset = length},
               [&] { return FileSystem::Truncate(file, length); });
}

int FaultyFileSystem::SyncData(int file) {
  return stage({.call = FileCall::syncData, .path = paths_[file]},
               [&] { return skipsSyncs_ ? 0 : FileSystem::SyncData(file); });
}

int FaultyFileSystem::SyncAll(int file) {
  return stage({.call = FileCall::syncAll, .path = paths_[file]},
               [&] { return skipsSyncs_ ? 0 : FileSystem::SyncAll(file); });
}

int FaultyFileSystem::Lock(int file, bool exclusive) {
  return stage({.call = FileCall::lock, .path = paths_[file]},
               [&] { return FileSystem::Lock(file, exclusive); });
}

int FaultyFileSystem::EnterGate(int file, bool exclusive) {
  return stage({.call = FileCall::gate, .path = paths_[file]},
               [&] { return FileSystem::EnterGate(file, exclusive); });
}

int FaultyFileSystem::LeaveGate(int file) {
  return stage({.call = FileCall::gate, .path = paths_[file]},
               [&] { return FileSystem::LeaveGate(file); });
}

int FaultyFileSystem::Stat(int file, struct stat& info) {
  return stage({.call = FileCall::stat, .path = paths_[file]},
               [&] { return FileSystem::Stat(file, info); });
}

int FaultyFileSystem::StatPath(const char* path, struct stat& info) {
  return stage({.call = FileCall::statPath, .path = path},
               [&] { return FileSystem::StatPath(path, info); });
}

int FaultyFileSystem::Rename(const char* from, const char* to) {
  return stage({.call = FileCall::rename, .path = from, .to = to},
               [&] { return FileSystem::Rename(from, to); });
}

int FaultyFileSystem::Remove(const char* path) {
  return stage({.call = FileCall::remove, .path = path}, [&] { return FileSystem::Remove(path); });
}

int FaultyFileSystem::CopyAttributes(int model, int file) {
  return stage({.call = FileCall::copyAttributes, .path = paths_[file]},
               [&] { return FileSystem::CopyAttributes(model, file); });
}

}  // namespace vex2::test
