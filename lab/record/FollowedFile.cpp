#include "lab/record/FollowedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "lab/Error.h"
#include "lab/SystemError.h"

namespace vex2::lab {

namespace {

struct stat statusOf(const std::string& path, int handle) {
  struct stat info {};
  if (::fstat(handle, &info) != 0) throw SystemError(path, errno);
  return info;
}

}  // namespace

// O_NONBLOCK is for the case that a pipe is at the path instead of a document: opening it must not
// block.
FollowedFile::FollowedFile(const std::string& path)
    : path_(path), handle_(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
  if (handle_ < 0) throw SystemError(path, errno);
}

FollowedFile::~FollowedFile() {
  if (handle_ >= 0) ::close(handle_);
}

FollowedFile& FollowedFile::operator=(FollowedFile&& other) noexcept {
  std::swap(path_, other.path_);
  std::swap(handle_, other.handle_);
  return *this;
}

FileIdentity FollowedFile::Identity() const {
  const struct stat info = statusOf(path_, handle_);
  return {info.st_dev, info.st_ino};
}

std::uint64_t FollowedFile::Length() const {
  return static_cast<std::uint64_t>(statusOf(path_, handle_).st_size);
}

bool FollowedFile::Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
  while (!bytes.empty()) {
    const ssize_t got = ::pread(handle_, bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw SystemError(path_, errno, offset);
    if (got == 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(got));
    offset += static_cast<std::uint64_t>(got);
  }
  return true;
}

}  // namespace vex2::lab
