#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "lab/model/FrameReader.h"

namespace vex2::lab {

/// A file to which another program appends. It is read without a lock, so that the other program
/// never waits. Read only bytes that the other program does not overwrite, or read them twice and
/// compare.
class FollowedFile {
 public:
  /// Makes an object without a file.
  FollowedFile() = default;
  /// Opens the file at `path`. Throws an error with the system's reason.
  explicit FollowedFile(const std::string& path);
  ~FollowedFile();
  FollowedFile(FollowedFile&& other) noexcept { *this = std::move(other); }
  FollowedFile& operator=(FollowedFile&& other) noexcept;

  bool IsOpen() const { return handle_ >= 0; }
  FileIdentity Identity() const;
  /// The current length of the file.
  std::uint64_t Length() const;
  /// Reads all of `bytes` from `offset` on. Returns false if the file has fewer bytes left.
  [[nodiscard]] bool Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const;

 private:
  std::string path_;
  int handle_ = -1;
};

}  // namespace vex2::lab
