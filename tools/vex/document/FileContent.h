#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vex2::tool {

/// What tells the content of one file from that of another: it is compared, not kept.
struct FileContent {
  std::uint64_t size = 0;
  std::uint64_t hash = 0;

  friend bool operator==(const FileContent&, const FileContent&) = default;
};

/// Reads the file at `path`, whoever has it locked; nothing when it cannot be read.
std::optional<FileContent> ContentOf(const std::string& path);

}  // namespace vex2::tool
