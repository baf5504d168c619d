#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace vex2::lab {

/// Computes the SHA-256 digest (FIPS 180-4) of bytes that are added in parts.
class Sha256 {
 public:
  using Digest = std::array<std::uint8_t, 32>;

  void Add(std::string_view bytes);
  /// The digest of all bytes that were added. Nothing may be added afterwards.
  Digest Finish();

 private:
  void addBlock(const std::uint8_t* block);

  static constexpr std::size_t kBlockSize = 64;
  std::array<std::uint32_t, 8> state_ = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                         0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
  std::array<std::uint8_t, kBlockSize> pending_{};
  std::size_t pendingSize_ = 0;
  std::uint64_t size_ = 0;
};

/// The digest of the file at `path`, in hexadecimal. Throws an error with the system's reason if
/// the file cannot be read.
std::string Sha256OfFile(const std::string& path);

}  // namespace vex2::lab
