#include "tools/vex/run/RecordingLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>

#include "tools/vex/Errors.h"

namespace vex2::tool {

namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40;             // as many as the system itself follows
constexpr std::size_t kLongestName = 200;  // the lock's own name must fit where the document's does

fs::path lockBeside(const fs::path& document) {
  std::string name = ".";
  name += document.filename().string().substr(0, kLongestName);
  name += ".recording";
  return document.parent_path() / name;
}

}  // namespace

fs::path ResolveDocument(const std::string& path) {
  if (path.empty()) throw Error(ExitCode::kUsage, "the name of the document is empty");
  fs::path document = path;
  std::error_code error;
  for (int links = 0; links < kMostLinks && fs::is_symlink(document, error); ++links) {
    const fs::path target = fs::read_symlink(document, error);
    document = document.parent_path() / target;
  }
  const fs::path folder = document.parent_path().empty() ? "." : document.parent_path();
  const fs::path resolved = fs::canonical(folder, error);
  if (error) throw SystemError(path, error.value());
  const fs::path name = document.filename();
  if (name.empty() || fs::is_directory(document, error)) {
    throw SystemError(path, EISDIR);
  }
  return resolved / name;
}

RecordingLock::RecordingLock(const fs::path& document)
    : document_(document), path_(lockBeside(document)) {
  // The recorder that had the lock may have removed its file between our opening and our locking
  // it: then the lock is on nothing, and the next try makes a file of its own.
  while (open() && !isStillThere()) ::close(handle_);
  if (handle_ < 0) throw Error(ExitCode::kUsage, document.string(), "is being recorded already");
}

RecordingLock::~RecordingLock() {
  ::unlink(path_.c_str());  // while it is locked: afterwards it might be the next recorder's
  ::close(handle_);
}

void RecordingLock::refuseFolder(int error) const {
  const bool isReadOnly = error == EACCES || error == EPERM || error == EROFS;
  if (!isReadOnly) throw SystemError(document_.string(), error);
  const fs::path folder = document_.parent_path();
  throw Error(ExitCode::kUsage, document_.string(),
              "cannot be written: its folder " + folder.string() + " takes no new file (" +
                  std::strerror(error) + "); make the folder writable, or use another");
}

// False when another recorder has the lock.
bool RecordingLock::open() {
  handle_ = ::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0666);
  if (handle_ < 0) refuseFolder(errno);
  while (::flock(handle_, LOCK_EX | LOCK_NB) != 0) {
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) break;  // a file system without locks is used without
    ::close(handle_);
    handle_ = -1;
    return false;
  }
  return true;
}

bool RecordingLock::isStillThere() const {
  struct stat locked {};
  struct stat named {};
  return ::fstat(handle_, &locked) == 0 && ::stat(path_.c_str(), &named) == 0 &&
         locked.st_dev == named.st_dev && locked.st_ino == named.st_ino;
}

}  // namespace vex2::tool
