#include "vex2/framework/FileSystem.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <memory>

namespace vex2 {
namespace {

FileSystem& SystemFiles() {
  static FileSystem system;
  return system;
}

std::atomic<FileSystem*> installed{nullptr};

template <typename Result>
Result orError(Result result) {
  return result < 0 ? static_cast<Result>(-errno) : result;
}

// The gate is one byte at an offset that no document reaches. Like the main lock, its locks belong
// to the open file and are released when that file is closed.
constexpr off_t kGateAt = std::numeric_limits<off_t>::max() - 1;

int setGate(int file, short type) {
#ifdef F_OFD_SETLK
  struct flock gate {};
  gate.l_type = type;
  gate.l_whence = SEEK_SET;
  gate.l_start = kGateAt;
  gate.l_len = 1;
  const int status = orError(::fcntl(file, F_OFD_SETLK, &gate));
  return status == -EACCES ? -EWOULDBLOCK : status;
#else
  static_cast<void>(file), static_cast<void>(type), static_cast<void>(kGateAt);
  return -ENOSYS;
#endif
}

constexpr const char* kAccessList = "system.posix_acl_access";

}  // namespace

FileSystem::~FileSystem() = default;

int FileSystem::Open(const char* path, int flags, mode_t mode) {
  return orError(::open(path, flags, mode));
}

int FileSystem::Close(int file) {
  return orError(::close(file));
}

ssize_t FileSystem::ReadAt(int file, void* bytes, std::size_t count, std::uint64_t offset) {
  return orError(::pread(file, bytes, count, static_cast<off_t>(offset)));
}

ssize_t FileSystem::WriteAt(int file, const void* bytes, std::size_t count, std::uint64_t offset) {
  return orError(::pwrite(file, bytes, count, static_cast<off_t>(offset)));
}

int FileSystem::Truncate(int file, std::uint64_t length) {
  return orError(::ftruncate(file, static_cast<off_t>(length)));
}

int FileSystem::SyncData(int file) {
  return orError(::fdatasync(file));
}

int FileSystem::SyncAll(int file) {
  return orError(::fsync(file));
}

int FileSystem::Lock(int file, bool exclusive) {
  return orError(::flock(file, (exclusive ? LOCK_EX : LOCK_SH) | LOCK_NB));
}

int FileSystem::EnterGate(int file, bool exclusive) {
  return setGate(file, exclusive ? F_WRLCK : F_RDLCK);
}

int FileSystem::LeaveGate(int file) {
  return setGate(file, F_UNLCK);
}

int FileSystem::Stat(int file, struct stat& info) {
  return orError(::fstat(file, &info));
}

int FileSystem::StatPath(const char* path, struct stat& info) {
  return orError(::stat(path, &info));
}

int FileSystem::Rename(const char* from, const char* to) {
  return orError(std::rename(from, to));
}

int FileSystem::Remove(const char* path) {
  return orError(::unlink(path));
}

int FileSystem::CopyAttributes(int model, int file) {
  struct stat info {};
  if (const int status = Stat(model, info); status < 0) return status;
  // Users who could write the old file must be able to write the new one, even if its owner
  // changes. So set owner and group, or else the group alone; failing to set the owner is not an
  // error.
  if (::fchown(file, info.st_uid, info.st_gid) != 0) {
    [[maybe_unused]] const int ignored = ::fchown(file, static_cast<uid_t>(-1), info.st_gid);
  }
  if (::fchmod(file, info.st_mode & 07777U) != 0) return -errno;
  std::array<char, 4096> list{};
  const ssize_t size = ::fgetxattr(model, kAccessList, list.data(), list.size());
  if (size > 0) {
    [[maybe_unused]] const int ignored =
        ::fsetxattr(file, kAccessList, list.data(), static_cast<std::size_t>(size), 0);
  }
  return 0;
}

std::int64_t FileSystem::Milliseconds() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

void FileSystem::Pause(int milliseconds) {
  const timespec pause{milliseconds / 1000, (milliseconds % 1000) * 1'000'000L};
  ::nanosleep(&pause, nullptr);
}

FileSystem& CurrentFileSystem() {
  FileSystem* system = installed.load(std::memory_order_acquire);
  return system != nullptr ? *system : SystemFiles();
}

FileSystem* SetFileSystem(FileSystem* system) {
  return installed.exchange(system, std::memory_order_acq_rel);
}

std::string ResolvedPath(const char* path) {
  const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path, nullptr), &std::free);
  return real != nullptr ? real.get() : path;
}

std::string FolderOf(const std::string& path) {
  const auto separator = path.rfind('/');
  if (separator == std::string::npos) return "./";
  return path.substr(0, separator + 1);
}

int SyncFolderOf(const std::string& path) {
  auto& files = CurrentFileSystem();
  const int folder = files.Open(FolderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
  if (folder < 0) return 0;
  const int synced = files.SyncAll(folder);
  files.Close(folder);
  return synced == -EINVAL ? 0 : synced;
}

}  // namespace vex2
