#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace vex2 {

/// The one seam between the library and the operating system's files. `CFile` goes through it for
/// everything, so that faults of every kind can be staged behind it. Internal, not installed.
///
/// Every operation answers a non-negative result or the negated system error number. Interrupted
/// and partial transfers are the caller's to continue.
class FileSystem {
 public:
  virtual ~FileSystem();

  virtual int Open(const char* path, int flags, mode_t mode);
  virtual int Close(int file);
  virtual ssize_t ReadAt(int file, void* bytes, std::size_t count, std::uint64_t offset);
  virtual ssize_t WriteAt(int file, const void* bytes, std::size_t count, std::uint64_t offset);
  virtual int Truncate(int file, std::uint64_t length);
  /// Content (and what is needed to find it) is on the disk when it returns.
  virtual int SyncData(int file);
  /// Content and attributes are on the disk when it returns.
  virtual int SyncAll(int file);
  /// Takes an advisory lock without waiting; -EWOULDBLOCK when another holds it.
  virtual int Lock(int file, bool exclusive);
  /// Takes a place before the lock without waiting: one for writers or any number of readers;
  /// -EWOULDBLOCK when the others have it. Whoever may have to wait for the lock waits there, so
  /// that readers who come later do not keep a writer waiting for ever, nor writers a reader.
  virtual int EnterGate(int file, bool exclusive);
  virtual int LeaveGate(int file);
  virtual int Stat(int file, struct stat& info);
  virtual int StatPath(const char* path, struct stat& info);
  virtual int Rename(const char* from, const char* to);
  virtual int Remove(const char* path);
  /// Gives `file` the permissions, owner and access list of `model` as far as the system lets it.
  virtual int CopyAttributes(int model, int file);
  /// Monotonic milliseconds, and a pause: what waiting for a lock needs.
  virtual std::int64_t Milliseconds();
  virtual void Pause(int milliseconds);
};

/// The file system in use; the system's own unless one was installed.
FileSystem& CurrentFileSystem();

/// Installs `system` for the whole process, null for the system's own. Returns what was installed
/// before. It stays the caller's.
FileSystem* SetFileSystem(FileSystem* system);

/// `path` with symbolic links resolved; as it is where nothing is there.
std::string ResolvedPath(const char* path);
/// The folder that `path` is in, with its trailing separator.
std::string FolderOf(const std::string& path);
/// The names in the folder of `path` are on the disk when it returns 0. A folder that cannot be
/// opened or synced for its kind is passed over.
int SyncFolderOf(const std::string& path);

}  // namespace vex2
