#pragma once

#include <fcntl.h>

#include <cerrno>
#include <new>
#include <string>
#include <string_view>

#include "vex2/framework/FileSystem.h"

namespace vex2::test {

/// The system's files with faults staged in front of them. Installed while it lives.
class FaultyFiles : public FileSystem {
 public:
  FaultyFiles() : before_(SetFileSystem(this)) {}
  ~FaultyFiles() override { SetFileSystem(before_); }
  FaultyFiles(const FaultyFiles&) = delete;
  FaultyFiles& operator=(const FaultyFiles&) = delete;

  /// What a fault is when it is no error number: memory that runs out.
  static constexpr int kNoMemory = -1;

  /// A system error number for one kind of call, after that many calls that go well.
  struct Fault {
    int error = 0;
    int after = 0;

    /// 0, or the negated error when its time has come.
    int Next() {
      if (error == 0 || after-- > 0) return 0;
      if (error == kNoMemory) throw std::bad_alloc();
      return -error;
    }
  };

  Fault open, createNew, lock, stat, read, write, truncate, syncData, syncAll, rename, attributes;
  std::string calls;      ///< a letter for each call that changes something, oldest first
  std::size_t chunk = 0;  ///< the most that a single transfer moves; 0 for any amount
  int interruptions = 0;  ///< calls that are interrupted before one goes on

  int Open(const char* path, int flags, mode_t mode) override {
    if (interrupted()) return -EINTR;
    const int status = (flags & O_EXCL) != 0 ? createNew.Next() : open.Next();
    return status < 0 ? status : FileSystem::Open(path, flags, mode);
  }
  ssize_t ReadAt(int file, void* bytes, std::size_t count, std::uint64_t offset) override {
    if (interrupted()) return -EINTR;
    const int status = read.Next();
    return status < 0 ? status : FileSystem::ReadAt(file, bytes, cut(count), offset);
  }
  ssize_t WriteAt(int file, const void* bytes, std::size_t count, std::uint64_t offset) override {
    if (interrupted()) return -EINTR;
    calls += 'W';
    const int status = write.Next();
    return status < 0 ? status : FileSystem::WriteAt(file, bytes, cut(count), offset);
  }
  int Truncate(int file, std::uint64_t length) override {
    if (interrupted()) return -EINTR;
    calls += 'T';
    const int status = truncate.Next();
    return status < 0 ? status : FileSystem::Truncate(file, length);
  }
  int SyncData(int file) override {
    if (interrupted()) return -EINTR;
    calls += 'D';
    const int status = syncData.Next();
    return status < 0 ? status : FileSystem::SyncData(file);
  }
  int SyncAll(int file) override {
    if (interrupted()) return -EINTR;
    calls += 'S';
    const int status = syncAll.Next();
    return status < 0 ? status : FileSystem::SyncAll(file);
  }
  int Lock(int file, bool exclusive) override {
    if (interrupted()) return -EINTR;
    calls += 'L';
    const int status = lock.Next();
    return status < 0 ? status : FileSystem::Lock(file, exclusive);
  }
  int Stat(int file, struct stat& info) override {
    const int status = stat.Next();
    return status < 0 ? status : FileSystem::Stat(file, info);
  }
  int Rename(const char* from, const char* to) override {
    calls += 'R';
    const int status = rename.Next();
    return status < 0 ? status : FileSystem::Rename(from, to);
  }
  int CopyAttributes(int model, int file) override {
    const int status = attributes.Next();
    return status < 0 ? status : FileSystem::CopyAttributes(model, file);
  }

 private:
  bool interrupted() { return interruptions > 0 && interruptions-- > 0; }
  std::size_t cut(std::size_t count) const { return chunk != 0 && count > chunk ? chunk : count; }

  FileSystem* before_;
};

}  // namespace vex2::test
