#pragma once

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "vex2/framework/FileSystem.h"

namespace vex2::test {

enum class FileCall {
  open,
  close,
  read,
  write,
  truncate,
  syncData,
  syncAll,
  lock,
  stat,
  statPath,
  rename,
  remove,
  copyAttributes
};

/// One call on the file system as it was made, and what it answered.
struct FileOperation {
  FileCall call;
  std::string path;          ///< of the file worked on; where a rename comes from
  std::uint64_t offset = 0;  ///< of a transfer; the new length of a truncation
  std::uint64_t count = 0;   ///< bytes asked for
  std::int64_t result = 0;
};

/// The system's files behind a layer that logs every call and stages faults. Installed while it
/// lives. Calls are counted from 0; closing is logged but never fails, so that nothing is leaked.
class FaultyFileSystem : public FileSystem {
 public:
  FaultyFileSystem() : before_(SetFileSystem(this)) {}
  ~FaultyFileSystem() override { SetFileSystem(before_); }
  FaultyFileSystem(const FaultyFileSystem&) = delete;
  FaultyFileSystem& operator=(const FaultyFileSystem&) = delete;

  /// Lets call number `number` fail with `error`, and with `fromThenOn` all that follow it.
  void FailCall(int number, int error, bool fromThenOn = false) {
    failAt_ = number;
    error_ = error;
    fromThenOn_ = fromThenOn;
  }
  /// Lets every call of this kind fail.
  void FailKind(FileCall kind, int error) { failing_[kind] = error; }
  /// Lets every opening for writing fail, as on a document that is for reading only.
  void RefuseWriters(int error) { writersError_ = error; }
  /// Transfers move at most `bytes` at a time; and with `interrupt` every call that a signal can
  /// interrupt is interrupted once before it is carried out.
  void Shorten(std::size_t bytes, bool interrupt) {
    most_ = bytes;
    interrupts_ = interrupt;
  }
  /// Ends all faults, forgets the log and counts calls from 0 again.
  void Restart() {
    failAt_ = -1;
    failing_.clear();
    writersError_ = 0;
    Shorten(kNoLimit, false);
    log_.clear();
    calls_ = 0;
    hit_ = false;
  }

  const std::vector<FileOperation>& Log() const { return log_; }
  /// Calls that could have failed.
  int CallCount() const { return calls_; }
  /// Whether a staged fault has struck.
  bool HasFailed() const { return hit_; }

  int Open(const char* path, int flags, mode_t mode) override {
    FileOperation operation{FileCall::open, path};
    int status = fault(FileCall::open, true);
    if (status == 0 && writersError_ != 0 && (flags & kWriting) != 0) status = -writersError_;
    if (status == 0) status = FileSystem::Open(path, flags, mode);
    if (status >= 0) paths_[status] = path;
    return note(operation, status);
  }
  int Close(int file) override {
    const FileOperation operation{FileCall::close, paths_[file]};
    paths_.erase(file);
    return note(operation, FileSystem::Close(file));
  }
  ssize_t ReadAt(int file, void* bytes, std::size_t count, std::uint64_t offset) override {
    const FileOperation operation{FileCall::read, paths_[file], offset, count};
    ssize_t status = fault(FileCall::read, true);
    if (status == 0) status = FileSystem::ReadAt(file, bytes, std::min(count, most_), offset);
    return note(operation, status);
  }
  ssize_t WriteAt(int file, const void* bytes, std::size_t count, std::uint64_t offset) override {
    const FileOperation operation{FileCall::write, paths_[file], offset, count};
    ssize_t status = fault(FileCall::write, true);
    if (status == 0) status = FileSystem::WriteAt(file, bytes, std::min(count, most_), offset);
    return note(operation, status);
  }
  int Truncate(int file, std::uint64_t length) override {
    const FileOperation operation{FileCall::truncate, paths_[file], length};
    const int status = fault(FileCall::truncate, true);
    return note(operation, status != 0 ? status : FileSystem::Truncate(file, length));
  }
  int SyncData(int file) override {
    const int status = fault(FileCall::syncData, true);
    return note({FileCall::syncData, paths_[file]},
                status != 0 ? status : FileSystem::SyncData(file));
  }
  int SyncAll(int file) override {
    const int status = fault(FileCall::syncAll, true);
    return note({FileCall::syncAll, paths_[file]},
                status != 0 ? status : FileSystem::SyncAll(file));
  }
  int Lock(int file, bool exclusive) override {
    const int status = fault(FileCall::lock, true);
    return note({FileCall::lock, paths_[file]},
                status != 0 ? status : FileSystem::Lock(file, exclusive));
  }
  int Stat(int file, struct stat& info) override {
    const int status = fault(FileCall::stat, false);
    return note({FileCall::stat, paths_[file]},
                status != 0 ? status : FileSystem::Stat(file, info));
  }
  int StatPath(const char* path, struct stat& info) override {
    const int status = fault(FileCall::statPath, false);
    return note({FileCall::statPath, path},
                status != 0 ? status : FileSystem::StatPath(path, info));
  }
  int Rename(const char* from, const char* to) override {
    const int status = fault(FileCall::rename, false);
    return note({FileCall::rename, from}, status != 0 ? status : FileSystem::Rename(from, to));
  }
  int Remove(const char* path) override {
    const int status = fault(FileCall::remove, false);
    return note({FileCall::remove, path}, status != 0 ? status : FileSystem::Remove(path));
  }
  int CopyAttributes(int model, int file) override {
    const int status = fault(FileCall::copyAttributes, false);
    return note({FileCall::copyAttributes, paths_[file]},
                status != 0 ? status : FileSystem::CopyAttributes(model, file));
  }

 private:
  static constexpr std::size_t kNoLimit = SIZE_MAX;
  static constexpr int kWriting = 3;  // the bits of O_WRONLY and O_RDWR

  int fault(FileCall kind, bool interruptible) {
    if (interruptible && interrupts_) {
      interruptNow_ = !interruptNow_;
      if (interruptNow_) return -EINTR;
    }
    const int number = calls_++;
    if (failAt_ >= 0 && (number == failAt_ || (fromThenOn_ && number > failAt_))) {
      hit_ = true;
      return -error_;
    }
    const auto found = failing_.find(kind);
    if (found == failing_.end()) return 0;
    hit_ = true;
    return -found->second;
  }

  template <typename Result>
  Result note(FileOperation operation, Result result) {
    operation.result = result;
    log_.push_back(std::move(operation));
    return result;
  }

  FileSystem* before_;
  std::map<int, std::string> paths_;
  std::vector<FileOperation> log_;
  std::map<FileCall, int> failing_;
  int calls_ = 0;
  int failAt_ = -1;
  int error_ = 0;
  bool fromThenOn_ = false;
  int writersError_ = 0;
  std::size_t most_ = kNoLimit;
  bool interrupts_ = false;
  bool interruptNow_ = false;
  bool hit_ = false;
};

}  // namespace vex2::test
