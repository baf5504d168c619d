#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <optional>
#include <string>

namespace vex2::lab {

/// Size and hash of a file's content, to compare it with that of another file.
struct FileContent {
  std::uint64_t size = 0;
  std::uint64_t hash = 0;

  friend bool operator==(const FileContent&, const FileContent&) = default;
};

/// Reads the file at `path`, even if it is locked; nothing if it cannot be read.
std::optional<FileContent> ContentOf(const std::string& path);

/// The state of a file at one moment, to find out later whether the file has changed. It consists
/// of the times that the system keeps, so that the file need not be read. If these times may be too
/// coarse, it also includes the content.
class FileState {
 public:
  /// Keeps the state of the file at `path`, or the fact that the file does not exist. If the file
  /// changed just now, waits a moment, because a second change could get the same time.
  static FileState Note(const std::string& path);

  /// Whether the file at `path` has not changed since `Note`.
  bool IsStillAt(const std::string& path) const;

 private:
  bool isSameFile(const struct stat& other) const;

  std::optional<struct stat> info_;
  std::optional<FileContent> content_;
};

}  // namespace vex2::lab
