#include "tools/vex/document/FileContent.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

namespace vex2::tool {

namespace {

constexpr std::size_t kChunk = std::size_t{256} * 1024;
constexpr std::uint64_t kHashStart = 0xCBF29CE484222325U;
constexpr std::uint64_t kHashFactor = 0x100000001B3U;

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

}  // namespace vex2::tool
