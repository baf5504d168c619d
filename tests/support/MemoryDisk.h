#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/Files.h"
#include "tests/support/MemoryFiles.h"

namespace vex2::test {

/// One change of the disk, or a barrier between changes.
struct DiskStep {
  enum Kind {
    write,       ///< `bytes` at `offset` of the file `node`
    resize,      ///< the file `node` gets the length `offset`
    sync,        ///< the content of the file `node` is on the disk
    name,        ///< `path` now names the file `node`; 0 if the name is removed
    syncFolder,  ///< the names are on the disk
    mark,        ///< one more operation of the test has returned
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
  /// Notes in the log that an operation of the test has returned.
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
