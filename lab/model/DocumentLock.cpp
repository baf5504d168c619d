#include "lab/model/DocumentLock.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <string_view>
#include <system_error>
#include <thread>

#include "lab/SystemError.h"

namespace vex2::lab {

namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40;  // the number of links that the system itself follows
// Shortens the name so that the lock file's name is not too long.
constexpr std::size_t kLongestName = 200;

// The holder writes one of these notes into the lock file, so that others know whether to wait.
constexpr std::string_view kCommandNote = "command";
constexpr std::string_view kRecorderNote = "recorder";

constexpr auto kPause = std::chrono::milliseconds(5);
// How long to wait. A command holds the lock while it reads and saves one document.
constexpr auto kPatience = std::chrono::seconds(10);
// How long to wait without the note of a command. In this time a new holder writes its note;
// before, the file may still have the note of a killed recorder.
constexpr auto kNotePatience = std::chrono::milliseconds(200);

fs::path lockBeside(const fs::path& document) {
  std::string name = ".";
  name += document.filename().string().substr(0, kLongestName);
  name += ".recording";
  return document.parent_path() / name;
}

}  // namespace

fs::path ResolveDocument(const std::string& path) {
  if (path.empty()) throw Error(ErrorCode::kUsage, "the name of the document is empty");
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

DocumentLock::DocumentLock(const std::string& path, Holder holder)
    : given_(path), document_(ResolveDocument(path)), path_(lockBeside(document_)) {
  const auto begun = std::chrono::steady_clock::now();
  auto commandSeen = begun;
  while (!tryToLock(holder)) {
    const auto now = std::chrono::steady_clock::now();
    // If several commands wait, there is a moment without a note each time that one takes the lock.
    if (holderNote() == kCommandNote) commandSeen = now;
    if (now - begun > kPatience || now - commandSeen > kNotePatience) refuse();
    std::this_thread::sleep_for(kPause);
  }
  if (handle_ < 0) return;
  const std::string_view note = holder == Holder::kCommand ? kCommandNote : kRecorderNote;
  // If writing the note fails, others take the holder for a recorder and do not wait.
  if (::ftruncate(handle_, 0) == 0) {
    [[maybe_unused]] const auto written = ::pwrite(handle_, note.data(), note.size(), 0);
  }
}

DocumentLock::~DocumentLock() {
  if (handle_ < 0) return;
  // Remove the file while it is locked: later it might belong to the next holder.
  ::unlink(path_.c_str());
  ::close(handle_);
}

// Returns false if another process has the lock.
bool DocumentLock::tryToLock(Holder holder) {
  // The holder may have removed its file after we opened it and before we locked it. Then our lock
  // protects nothing, and the next attempt creates a new file.
  while (open(holder)) {
    if (handle_ < 0 || isStillThere()) return true;
    ::close(handle_);
  }
  return false;
}

bool DocumentLock::open(Holder holder) {
  constexpr int kFlags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  handle_ = ::open(path_.c_str(), O_RDWR | O_CREAT | kFlags, 0666);
  if (handle_ < 0 && holder == Holder::kCommand) {
    const int error = errno;
    // A lock file of another user can be opened for reading, which is enough to wait for the lock.
    handle_ = ::open(path_.c_str(), O_RDONLY | kFlags);
    if (handle_ < 0 && (error == EACCES || error == EPERM || error == EROFS)) return true;
  }
  if (handle_ < 0) refuseFolder(errno);
  while (::flock(handle_, LOCK_EX | LOCK_NB) != 0) {
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) break;  // no locks in this file system: work without one
    ::close(handle_);
    handle_ = -1;
    return false;
  }
  return true;
}

void DocumentLock::refuseFolder(int error) const {
  const bool isReadOnly = error == EACCES || error == EPERM || error == EROFS;
  if (!isReadOnly) throw SystemError(given_, error);
  throw Error(ErrorCode::kUsage, given_,
              fmt::format("cannot be written: its folder {} takes no new file ({}); make the "
                          "folder writable, or use another",
                          document_.parent_path().string(), std::strerror(error)));
}

bool DocumentLock::isStillThere() const {
  struct stat locked {};
  struct stat named {};
  return ::fstat(handle_, &locked) == 0 && ::stat(path_.c_str(), &named) == 0 &&
         locked.st_dev == named.st_dev && locked.st_ino == named.st_ino;
}

std::string DocumentLock::holderNote() const {
  std::array<char, 16> note{};
  const int file = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  // The holder has removed the file, as a command does when it is done.
  if (file < 0) return std::string(kCommandNote);
  const auto length = ::read(file, note.data(), note.size());
  ::close(file);
  return {note.data(), length > 0 ? static_cast<std::size_t>(length) : 0};
}

void DocumentLock::refuse() const {
  if (holderNote() == kCommandNote) {
    throw Error(ErrorCode::kInUse, given_,
                "another program is changing it; try again when it is done");
  }
  std::error_code ignored;
  const bool isLink = fs::is_symlink(given_, ignored);
  throw Error(
      ErrorCode::kInUse, given_,
      isLink ? fmt::format("leads to {}, which is being recorded already; wait until the recorder "
                           "is done, or end it with Ctrl-C",
                           document_.string())
             : "is being recorded already; wait until the recorder is done, or end it with Ctrl-C");
}

}  // namespace vex2::lab
