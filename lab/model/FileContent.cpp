#include "lab/model/FileContent.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>
#include <vector>

namespace vex2::lab {

namespace {

constexpr std::size_t kChunk = std::size_t{256} * 1024;
constexpr std::uint64_t kHashStart = 0xCBF29CE484222325U;
constexpr std::uint64_t kHashFactor = 0x100000001B3U;

// Longer than the interval at which the clock for file times advances.
constexpr std::chrono::milliseconds kTick{20};

std::optional<struct stat> infoOf(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0 ? std::optional(info) : std::nullopt;
}

bool isSameTime(const timespec& one, const timespec& other) {
  return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

// Whether every later change of the file will get a later time than that in `info`. That is
// uncertain if the time is in whole seconds, since the file system may not have finer times.
bool isSettled(const struct stat& info) {
  if (info.st_ctim.tv_nsec == 0) return false;
  const auto changed =
      std::chrono::seconds(info.st_ctim.tv_sec) + std::chrono::nanoseconds(info.st_ctim.tv_nsec);
  return std::chrono::system_clock::now().time_since_epoch() - changed > kTick;
}

}  // namespace

std::optional<FileContent> ContentOf(const std::string& path) {
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return std::nullopt;
  FileContent content{.size = 0, .hash = kHashStart};
  std::vector<std::uint8_t> bytes(kChunk);
  ssize_t count = 0;
  while ((count = ::read(file, bytes.data(), bytes.size())) != 0) {
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) break;
    content.size += static_cast<std::uint64_t>(count);
    for (ssize_t i = 0; i < count; ++i) {
      content.hash = (content.hash ^ bytes[static_cast<std::size_t>(i)]) * kHashFactor;
    }
  }
  ::close(file);
  return count == 0 ? std::optional(content) : std::nullopt;
}

FileState FileState::Note(const std::string& path) {
  FileState state;
  state.info_ = infoOf(path);
  if (!state.info_ || isSettled(*state.info_)) return state;
  std::this_thread::sleep_for(kTick);
  state.info_ = infoOf(path);
  if (state.info_ && !isSettled(*state.info_)) state.content_ = ContentOf(path);
  return state;
}

bool FileState::isSameFile(const struct stat& other) const {
  return info_->st_dev == other.st_dev && info_->st_ino == other.st_ino &&
         info_->st_size == other.st_size && isSameTime(info_->st_mtim, other.st_mtim) &&
         isSameTime(info_->st_ctim, other.st_ctim);
}

bool FileState::IsStillAt(const std::string& path) const {
  const auto now = infoOf(path);
  if (!now || !info_) return !now && !info_;
  return isSameFile(*now) && (!content_ || ContentOf(path) == content_);
}

}  // namespace vex2::lab
