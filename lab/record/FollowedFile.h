#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "lab/model/FrameReader.h"

namespace vex2::lab {

/// A file that another program appends to, read without a lock, so that the other never waits. Read
/// only bytes that the other program does not overwrite, or read them twice and compare.
class FollowedFile {
 public:
  /// No file.
  FollowedFile() = default;
  /// Opens the file at `path`. Throws an error with the system's reason.
  explicit FollowedFile(const std::string& path);
  ~FollowedFile();
  FollowedFile(FollowedFile&& other) noexcept { *this = std::move(other); }
  FollowedFile& operator=(FollowedFile&& other) noexcept;

  bool IsOpen() const { return handle_ >= 0; }
  FileIdentity Identity() const;
  /// The file's length now.
  std::uint64_t Length() const;
  /// Reads all of `bytes` from `offset` on. False when the file ends before.
  [[nodiscard]] bool Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const;

 private:
  std::string path_;
  int handle_ = -1;
};

}  // namespace vex2::lab
