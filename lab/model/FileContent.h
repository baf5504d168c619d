#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <optional>
#include <string>

namespace vex2::lab {

/// What tells the content of one file from that of another: it is compared, not kept.
struct FileContent {
  std::uint64_t size = 0;
  std::uint64_t hash = 0;

  friend bool operator==(const FileContent&, const FileContent&) = default;
};

/// Reads the file at `path`, whoever has it locked; nothing if it cannot be read.
std::optional<FileContent> ContentOf(const std::string& path);

/// What a file was like at one moment, to tell later whether it has changed. Costs no reading of
/// the file: the system's times of its last change tell. Only where they may be too coarse for that
/// is the content noted, too.
class FileState {
 public:
  /// Notes the file at `path`; one that is not there is noted as such. Waits a moment for a file
  /// that changed just now, because a second change could carry the same time.
  static FileState Note(const std::string& path);

  /// Whether the file at `path` is as it was.
  bool IsStillAt(const std::string& path) const;

 private:
  bool isSameFile(const struct stat& other) const;

  std::optional<struct stat> info_;
  std::optional<FileContent> content_;
};

}  // namespace vex2::lab
