#include "tests/support/MemoryDisk.h"

#include <fcntl.h>

namespace vex2::test {

int MemoryDisk::Open(const char* path, int flags, mode_t mode) {
  const bool isNew = (flags & O_DIRECTORY) == 0 && !Has(path);
  const int file = MemoryFiles::Open(path, flags, mode);
  if (isNew && file >= 0) log_.push_back({DiskStep::name, NumberOf(file), 0, path});
  return file;
}

ssize_t MemoryDisk::WriteAt(int file, const void* bytes, std::size_t count, std::uint64_t offset) {
  const ssize_t written = MemoryFiles::WriteAt(file, bytes, count, offset);
  if (written < 0) return written;
  const auto* from = static_cast<const std::uint8_t*>(bytes);
  log_.push_back({DiskStep::write, NumberOf(file), offset, {}, Bytes(from, from + written)});
  return written;
}

int MemoryDisk::Truncate(int file, std::uint64_t length) {
  const int status = MemoryFiles::Truncate(file, length);
  if (status == 0) log_.push_back({DiskStep::resize, NumberOf(file), length});
  return status;
}

int MemoryDisk::SyncData(int file) {
  const int node = NumberOf(file);
  log_.push_back({node == kFolder ? DiskStep::syncFolder : DiskStep::sync, node});
  return 0;
}

int MemoryDisk::Rename(const char* from, const char* to) {
  const int status = MemoryFiles::Rename(from, to);
  if (status != 0) return status;
  log_.push_back({DiskStep::name, 0, 0, from});
  log_.push_back({DiskStep::name, NumberAt(to), 0, to});
  return 0;
}

int MemoryDisk::Remove(const char* path) {
  const int status = MemoryFiles::Remove(path);
  if (status == 0) log_.push_back({DiskStep::name, 0, 0, path});
  return status;
}

}  // namespace vex2::test
