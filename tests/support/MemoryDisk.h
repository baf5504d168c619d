#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tests/support/Files.h"
#include "vex2/framework/FileSystem.h"

namespace vex2::test {

/// One change of a disk, or a barrier between changes, in the order in which they were asked for.
struct DiskStep {
  enum Kind {
    write,       ///< `bytes` at `offset` of the file `node`
    resize,      ///< of the file `node` to `offset` bytes
    sync,        ///< of the file `node`
    name,        ///< `path` leads to the file `node` from now on; 0 when it is removed
    syncFolder,  ///< of what the names lead to
    mark,        ///< the test's: one more of its operations has returned
  };
  Kind kind;
  int node = 0;
  std::uint64_t offset = 0;
  std::string path = {};
  Bytes bytes = {};
};

/// A disk in memory in the place of the system's files, with a log of its changes. Files are
/// numbered from 1 and keep their number when they are renamed. Locks are always granted.
/// Installed while it lives.
class MemoryDisk : public FileSystem {
 public:
  MemoryDisk() : before_(SetFileSystem(this)) {}
  ~MemoryDisk() override { SetFileSystem(before_); }
  MemoryDisk(const MemoryDisk&) = delete;
  MemoryDisk& operator=(const MemoryDisk&) = delete;

  /// Tells the log that an operation of the test has returned.
  void Mark() { log_.push_back({DiskStep::mark}); }
  const std::vector<DiskStep>& Log() const { return log_; }
  /// What `path` holds; it must be there.
  const Bytes& ContentOf(const std::string& path) { return contents_.at(names_.at(path)); }
  /// Makes `path` hold `content`, past the log.
  void Put(const std::string& path, const Bytes& content);

  int Open(const char* path, int flags, mode_t mode) override;
  int Close(int file) override;
  ssize_t ReadAt(int file, void* bytes, std::size_t count, std::uint64_t offset) override;
  ssize_t WriteAt(int file, const void* bytes, std::size_t count, std::uint64_t offset) override;
  int Truncate(int file, std::uint64_t length) override;
  int SyncData(int file) override;
  int SyncAll(int file) override;
  int Lock(int file, bool exclusive) override;
  int EnterGate(int, bool) override { return 0; }
  int LeaveGate(int) override { return 0; }
  int Stat(int file, struct stat& info) override;
  int StatPath(const char* path, struct stat& info) override;
  int Rename(const char* from, const char* to) override;
  int Remove(const char* path) override;
  int CopyAttributes(int model, int file) override;

 private:
  static constexpr int kFolder = -1;  // the node of a handle on the one folder that there is

  int makeFile(const std::string& path);
  int describe(int node, struct stat& info) const;

  FileSystem* before_;
  std::map<std::string, int> names_;
  std::map<int, Bytes> contents_;
  std::map<int, int> handles_;
  int lastNode_ = 0;
  int lastHandle_ = 100;
  std::vector<DiskStep> log_;
};

}  // namespace vex2::test
