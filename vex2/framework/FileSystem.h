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
  /// Enters the gate in front of the lock, without waiting. The gate admits one writer or any
  /// number of readers; returns -EWOULDBLOCK if it cannot admit this one now. A caller that
  /// waits for the lock does not leave the gate until it has the lock. Otherwise later readers
  /// could keep a writer waiting for ever, and later writers could do the same to a reader.
  virtual int EnterGate(int file, bool exclusive);
  virtual int LeaveGate(int file);
  virtual int Stat(int file, struct stat& info);
  virtual int StatPath(const char* path, struct stat& info);
  virtual int Rename(const char* from, const char* to);
  virtual int Remove(const char* path);
  /// Gives `file` the permissions, owner and access list of `model`, as far as the system permits.
  virtual int CopyAttributes(int model, int file);
  /// The time of a monotonic clock in milliseconds. This and `Pause` are needed to wait for a lock.
  virtual std::int64_t Milliseconds();
  virtual void Pause(int milliseconds);
};

/// The file system in use: the operating system's, unless another one was installed.
FileSystem& CurrentFileSystem();

/// Installs `system` for the whole process; null installs the operating system's. The caller keeps
/// ownership. Returns the file system that was installed before.
FileSystem* SetFileSystem(FileSystem* system);

/// Returns `path` with symbolic links resolved, or `path` itself if nothing exists there.
std::string ResolvedPath(const char* path);
/// Returns the folder of `path`, with its trailing separator.
std::string FolderOf(const std::string& path);
/// Syncs the folder of `path`, so that the names in the folder are on the disk. Returns 0 or a
/// negated system error number; also 0 if the folder cannot be opened or is of a kind that cannot
/// be synced.
int SyncFolderOf(const std::string& path);

}  // namespace vex2
