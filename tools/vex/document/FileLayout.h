#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::tool {

// Sizes in a file, in bytes.
constexpr std::uint64_t kDocumentHeaderSize = 1024;  ///< of a plate in a study, too
constexpr std::uint64_t kRecordHeadSize = 8;         ///< tag and length
/// Of a data block's body, without well numbers and frames.
constexpr std::uint64_t kBlockFixedSize = AcquisitionDataComp::kFixedLength;
constexpr std::uint16_t kTimeBlockSize = AcquisitionDataComp::kTimeBlockSize;
constexpr std::uint64_t kReadingSize = 80;  ///< of one well in one frame

/// The 16 or 32 bits at `at`, big-endian as everything in a document but single floats.
inline std::uint16_t ShortAt(std::span<const std::uint8_t> bytes, std::size_t at = 0) {
  return static_cast<std::uint16_t>(bytes[at] << 8U | bytes[at + 1]);
}
inline std::uint32_t LongAt(std::span<const std::uint8_t> bytes, std::size_t at = 0) {
  return std::uint32_t{ShortAt(bytes, at)} << 16U | ShortAt(bytes, at + 2);
}

inline std::array<std::uint8_t, 2> ShortBytes(std::uint16_t value) {
  return {static_cast<std::uint8_t>(value >> 8U), static_cast<std::uint8_t>(value & 0xFFU)};
}
inline std::array<std::uint8_t, 4> LongBytes(std::uint32_t value) {
  const auto high = ShortBytes(static_cast<std::uint16_t>(value >> 16U));
  const auto low = ShortBytes(static_cast<std::uint16_t>(value & 0xFFFFU));
  return {high[0], high[1], low[0], low[1]};
}

}  // namespace vex2::tool
