#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/Files.h"
#include "tests/support/MemoryFiles.h"

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

/// Files in memory with a log of their changes. Files are numbered from 1 and keep their number
/// when they are renamed.
class MemoryDisk : public MemoryFiles {
 public:
  /// Tells the log that an operation of the test has returned.
  void Mark() { log_.push_back({DiskStep::mark}); }
  const std::vector<DiskStep>& Log() const { return log_; }

  int Open(const char* path, int flags, mode_t mode) override;
  ssize_t WriteAt(int file, const void* bytes, std::size_t count, std::uint64_t offset) override;
  int Truncate(int file, std::uint64_t length) override;
  int SyncData(int file) override;
  int SyncAll(int file) override { return SyncData(file); }
  int Rename(const char* from, const char* to) override;
  int Remove(const char* path) override;

 private:
  std::vector<DiskStep> log_;
};

}  // namespace vex2::test
