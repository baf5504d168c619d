#include "tests/support/MemoryDisk.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace vex2::test {

void MemoryDisk::Put(const std::string& path, const Bytes& content) {
  const auto found = names_.find(path);
  const int node = found != names_.end() ? found->second : ++lastNode_;
  names_[path] = node;
  contents_[node] = content;
}

int MemoryDisk::makeFile(const std::string& path) {
  const int node = ++lastNode_;
  names_[path] = node;
  contents_[node] = {};
  log_.push_back({DiskStep::name, node, 0, path});
  return node;
}

int MemoryDisk::Open(const char* path, int flags, mode_t /*mode*/) {
  const auto found = names_.find(path);
  int node = kFolder;
  if ((flags & O_DIRECTORY) == 0) {
    if (found == names_.end() && (flags & O_CREAT) == 0) return -ENOENT;
    if (found != names_.end() && (flags & O_EXCL) != 0) return -EEXIST;
    node = found != names_.end() ? found->second : makeFile(path);
  }
  handles_[++lastHandle_] = node;
  return lastHandle_;
}

int MemoryDisk::Close(int file) {
  return handles_.erase(file) == 1 ? 0 : -EBADF;
}

ssize_t MemoryDisk::ReadAt(int file, void* bytes, std::size_t count, std::uint64_t offset) {
  const Bytes& content = contents_.at(handles_.at(file));
  if (offset >= content.size()) return 0;
  const std::size_t got = std::min<std::uint64_t>(count, content.size() - offset);
  std::memcpy(bytes, content.data() + offset, got);
  return static_cast<ssize_t>(got);
}

ssize_t MemoryDisk::WriteAt(int file, const void* bytes, std::size_t count, std::uint64_t offset) {
  const int node = handles_.at(file);
  Bytes& content = contents_.at(node);
  if (content.size() < offset + count) content.resize(offset + count);
  const auto* from = static_cast<const std::uint8_t*>(bytes);
  std::copy_n(from, count, content.begin() + static_cast<std::ptrdiff_t>(offset));
  log_.push_back({DiskStep::write, node, offset, {}, Bytes(from, from + count)});
  return static_cast<ssize_t>(count);
}

int MemoryDisk::Truncate(int file, std::uint64_t length) {
  const int node = handles_.at(file);
  contents_.at(node).resize(length);
  log_.push_back({DiskStep::resize, node, length});
  return 0;
}

int MemoryDisk::SyncData(int file) {
  const int node = handles_.at(file);
  log_.push_back({node == kFolder ? DiskStep::syncFolder : DiskStep::sync, node});
  return 0;
}

int MemoryDisk::SyncAll(int file) {
  return SyncData(file);
}

int MemoryDisk::Lock(int /*file*/, bool /*exclusive*/) {
  return 0;
}

int MemoryDisk::describe(int node, struct stat& info) const {
  info = {};
  info.st_dev = 1;
  info.st_ino = static_cast<ino_t>(node);
  info.st_nlink = 1;
  info.st_mode = node == kFolder ? S_IFDIR : S_IFREG;
  if (node != kFolder) info.st_size = static_cast<off_t>(contents_.at(node).size());
  return 0;
}

int MemoryDisk::Stat(int file, struct stat& info) {
  return describe(handles_.at(file), info);
}

int MemoryDisk::StatPath(const char* path, struct stat& info) {
  const auto found = names_.find(path);
  return found != names_.end() ? describe(found->second, info) : -ENOENT;
}

int MemoryDisk::Rename(const char* from, const char* to) {
  const auto found = names_.find(from);
  if (found == names_.end()) return -ENOENT;
  const int node = found->second;
  names_.erase(found);
  names_[to] = node;
  log_.push_back({DiskStep::name, 0, 0, from});
  log_.push_back({DiskStep::name, node, 0, to});
  return 0;
}

int MemoryDisk::Remove(const char* path) {
  if (names_.erase(path) == 0) return -ENOENT;
  log_.push_back({DiskStep::name, 0, 0, path});
  return 0;
}

int MemoryDisk::CopyAttributes(int /*model*/, int /*file*/) {
  return 0;
}

}  // namespace vex2::test
