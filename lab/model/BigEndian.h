#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "vex2/format/Encoding.h"

namespace vex2::lab {

/// The number in the 16 or 32 bits at `at`. All numbers in a document are big-endian, except 32-bit
/// floating-point numbers.
inline std::uint16_t ShortAt(std::span<const std::uint8_t> bytes, std::size_t at = 0) {
  return LoadBig<std::uint16_t>(bytes.data() + at);
}
inline std::uint32_t LongAt(std::span<const std::uint8_t> bytes, std::size_t at = 0) {
  return LoadBig<std::uint32_t>(bytes.data() + at);
}

inline std::array<std::uint8_t, 2> ShortBytes(std::uint16_t value) {
  std::array<std::uint8_t, 2> bytes{};
  StoreBig(value, bytes.data());
  return bytes;
}
inline std::array<std::uint8_t, 4> LongBytes(std::uint32_t value) {
  std::array<std::uint8_t, 4> bytes{};
  StoreBig(value, bytes.data());
  return bytes;
}

}  // namespace vex2::lab
