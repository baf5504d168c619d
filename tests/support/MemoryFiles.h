#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/Files.h"
#include "vex2/framework/FileSystem.h"

namespace vex2::test {

/// Files in memory, used instead of the system's files while this object exists. It is for tests
/// that read or save hundreds of thousands of documents, such as sweeps of damaged documents and
/// the fuzz targets. It is fast, and nothing fails unless a limit is set. To inject other faults of
/// the disk, use `FaultyFileSystem`.
///
/// There are no folders and no links: every path can name a file. The clock advances only in
/// pauses, so waiting for a lock takes no real time.
class MemoryFiles : public FileSystem {
 public:
  MemoryFiles() : before_(SetFileSystem(this)) {}
  ~MemoryFiles() override { SetFileSystem(before_); }
  MemoryFiles(const MemoryFiles&) = delete;
  MemoryFiles& operator=(const MemoryFiles&) = delete;

  /// Sets the content of `path` to these bytes.
  void Put(const std::string& path, const std::uint8_t* bytes, std::size_t count) {
    nodeAt(path)->bytes.assign(bytes, bytes + count);
  }
  void Put(const std::string& path, const Bytes& bytes) { Put(path, bytes.data(), bytes.size()); }
  bool Has(const std::string& path) const { return names_.count(path) != 0; }
  /// The content of the file; empty if it does not exist. Valid until the file changes.
  const Bytes& Content(const std::string& path) const {
    static const Bytes kNothing;
    const auto found = names_.find(path);
    return found != names_.end() ? found->second->bytes : kNothing;
  }
  void Clear() {
    names_.clear();
    refused_ = false;
  }
  std::size_t FileCount() const { return names_.size(); }
  std::size_t OpenCount() const {
    return static_cast<std::size_t>(
        std::count_if(handles_.begin(), handles_.end(), [](const Handle& h) { return h.isOpen; }));
  }

  /// Makes writes that would make a file longer than `bytes` fail with EFBIG. Holes in files take
  /// memory, too.
  void SetLargestFile(std::size_t bytes) { largest_ = bytes; }
  bool HasRefused() const { return refused_; }

  int Open(const char* path, int flags, mode_t /*mode*/) override {
    const bool isFolder = (flags & O_DIRECTORY) != 0;
    const bool exists = !isFolder && Has(path);
    if (exists && (flags & O_EXCL) != 0) return -EEXIST;
    if (!isFolder && !exists && (flags & O_CREAT) == 0) return -ENOENT;
    auto free = std::find_if(handles_.begin(), handles_.end(),
                             [](const Handle& handle) { return !handle.isOpen; });
    if (free == handles_.end()) free = handles_.insert(free, Handle{});
    *free = {isFolder ? nullptr : nodeAt(path), true, Hold::none, flags & O_ACCMODE};
    return static_cast<int>(free - handles_.begin());
  }
  int Close(int file) override {
    Handle& handle = at(file);
    release(handle);
    handle = {};
    return 0;
  }
  ssize_t ReadAt(int file, void* bytes, std::size_t count, std::uint64_t offset) override {
    if (at(file).access == O_WRONLY) return -EBADF;
    const Bytes& content = at(file).node->bytes;
    if (offset >= content.size()) return 0;
    count = std::min<std::size_t>(count, content.size() - offset);
    std::memcpy(bytes, content.data() + offset, count);
    return static_cast<ssize_t>(count);
  }
  ssize_t WriteAt(int file, const void* bytes, std::size_t count, std::uint64_t offset) override {
    if (at(file).access == O_RDONLY) return -EBADF;
    Bytes& content = at(file).node->bytes;
    if (const int status = grow(content, offset, count); status < 0) return status;
    std::memcpy(content.data() + offset, bytes, count);
    return static_cast<ssize_t>(count);
  }
  int Truncate(int file, std::uint64_t length) override {
    if (length > largest_) return refuse();
    at(file).node->bytes.resize(length);
    return 0;
  }
  int SyncData(int /*file*/) override { return 0; }
  int SyncAll(int /*file*/) override { return 0; }
  int Lock(int file, bool exclusive) override {
    Handle& handle = at(file);
    release(handle);
    Node& node = *handle.node;
    if (node.isWritten || (exclusive && node.readers != 0)) return -EWOULDBLOCK;
    (exclusive ? node.isWritten = true : node.readers += 1);
    handle.hold = exclusive ? Hold::writes : Hold::reads;
    return 0;
  }
  int EnterGate(int /*file*/, bool /*exclusive*/) override { return 0; }
  int LeaveGate(int /*file*/) override { return 0; }
  int Stat(int file, struct stat& info) override {
    const auto& node = at(file).node;
    info = {};
    info.st_mode = node == nullptr ? S_IFDIR | 0700 : S_IFREG | 0600;
    if (node != nullptr) describe(*node, info);
    return 0;
  }
  int StatPath(const char* path, struct stat& info) override {
    const auto found = names_.find(path);
    if (found == names_.end()) return -ENOENT;
    info = {};
    info.st_mode = S_IFREG | 0600;
    describe(*found->second, info);
    return 0;
  }
  int Rename(const char* from, const char* to) override {
    const auto found = names_.find(from);
    if (found == names_.end()) return -ENOENT;
    auto node = found->second;
    names_.erase(found);
    names_[to] = std::move(node);
    return 0;
  }
  int Remove(const char* path) override { return names_.erase(path) != 0 ? 0 : -ENOENT; }
  int CopyAttributes(int /*model*/, int /*file*/) override { return 0; }
  std::int64_t Milliseconds() override { return now_; }
  void Pause(int milliseconds) override { now_ += milliseconds; }

 protected:
  static constexpr int kFolder = -1;  ///< the number of the one folder

  /// The number of an open file, or of the file that `path` names. Numbers count from 1 and do not
  /// change when a file is renamed.
  int NumberOf(int file) {
    const auto& node = at(file).node;
    return node != nullptr ? static_cast<int>(node->number) : kFolder;
  }
  int NumberAt(const std::string& path) { return static_cast<int>(names_.at(path)->number); }

 private:
  struct Node {
    Bytes bytes;
    std::uint64_t number = 0;
    int readers = 0;
    bool isWritten = false;
  };
  enum class Hold { none, reads, writes };
  struct Handle {
    std::shared_ptr<Node> node;  // null for a folder
    bool isOpen = false;
    Hold hold = Hold::none;
    int access = O_RDONLY;
  };

  std::shared_ptr<Node> nodeAt(const std::string& path) {
    auto& node = names_[path];
    if (node == nullptr) {
      node = std::make_shared<Node>();
      node->number = ++nodes_;
    }
    return node;
  }
  Handle& at(int file) { return handles_.at(static_cast<std::size_t>(file)); }
  static void release(Handle& handle) {
    if (handle.hold == Hold::reads) handle.node->readers -= 1;
    if (handle.hold == Hold::writes) handle.node->isWritten = false;
    handle.hold = Hold::none;
  }
  static void describe(const Node& node, struct stat& info) {
    info.st_ino = node.number;
    info.st_nlink = 1;
    info.st_size = static_cast<off_t>(node.bytes.size());
  }
  int grow(Bytes& content, std::uint64_t offset, std::size_t count) {
    if (offset > largest_ || count > largest_ - offset) return refuse();
    if (content.size() < offset + count) content.resize(offset + count);
    return 0;
  }
  int refuse() {
    refused_ = true;
    return -EFBIG;
  }

  FileSystem* before_;
  std::map<std::string, std::shared_ptr<Node>> names_;
  std::vector<Handle> handles_;
  std::uint64_t nodes_ = 0;
  std::int64_t now_ = 0;
  std::size_t largest_ = std::size_t{1} << 28U;
  bool refused_ = false;
};

}  // namespace vex2::test
