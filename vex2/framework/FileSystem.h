#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace vex2 {

/// The only interface between the library and the operating system's files. `CFile` makes every
/// system call through it, so that tests can make any call fail. Internal, not installed. Every
/// operation returns a non-negative result or the negated system error number. The caller continues
/// interrupted and partial transfers.
class FileSystem {
 public:
  virtual ~FileSystem();

  virtual int Open(const char* path, int flags, mode_t mode);
  virtual int Close(int file);
  virtual ssize_t ReadAt(int file, void* bytes, std::size_t count, std::uint64_t offset);
  virtual ssize_t WriteAt(int file, const void* bytes, std::size_t count, std::uint64_t offset);
  virtual int Truncate(int file, std::uint64_t length);
  /// Returns when the content, and the metadata needed to read it, are on the disk.
  virtual int SyncData(int file);
  /// Returns when content and attributes are on the disk.
  virtual int SyncAll(int file);
  /// Takes an advisory lock without waiting; returns -EWOULDBLOCK if another open file holds it.
  virtual int Lock(int file, bool exclusive);
  /// Enters the gate before the lock without waiting. The gate admits one writer or any number of
  /// readers; returns -EWOULDBLOCK if it is occupied. An opener waits for the lock while it holds
  /// the gate, so that later readers cannot keep a writer waiting for ever, nor later writers a
  /// reader.
  virtual int EnterGate(int file, bool exclusive);
  virtual int LeaveGate(int file);
  virtual int Stat(int file, struct stat& info);
  virtual int StatPath(const char* path, struct stat& info);
  virtual int Rename(const char* from, const char* to);
  virtual int Remove(const char* path);
  /// Gives `file` the permissions, owner and access list of `model`, as far as the system permits.
  virtual int CopyAttributes(int model, int file);
  /// A monotonic clock in milliseconds, and a pause. Both are needed to wait for a lock.
  virtual std::int64_t Milliseconds();
  virtual void Pause(int milliseconds);
};

/// The file system in use: the operating system's, unless another was installed.
FileSystem& CurrentFileSystem();

/// Installs `system` for the whole process; null installs the operating system's. The caller keeps
/// ownership. Returns the file system that was installed before.
FileSystem* SetFileSystem(FileSystem* system);

/// `path` with symbolic links resolved; `path` itself if nothing exists there.
std::string ResolvedPath(const char* path);
/// The folder that `path` is in, with its trailing separator.
std::string FolderOf(const std::string& path);
/// Syncs the folder of `path`: the names in it are on the disk when this returns 0. It also returns
/// 0 for a folder that cannot be opened, or of a kind that cannot be synced.
int SyncFolderOf(const std::string& path);

}  // namespace vex2
