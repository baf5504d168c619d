#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tests/support/Files.h"

/// Documents put together byte by byte, without the library under test.
namespace vex2::test {

/// `value` in `count` bytes, the most significant first.
inline std::string BigEndian(std::uint64_t value, int count) {
  std::string bytes;
  for (int shift = 8 * (count - 1); shift >= 0; shift -= 8) {
    bytes += static_cast<char>(value >> shift & 0xFFU);
  }
  return bytes;
}

/// A record whose length field says `declared`, whatever the body is.
inline std::string RecordDeclaring(std::string_view tag, std::uint32_t declared,
                                   const std::string& body) {
  return std::string(tag) + BigEndian(declared, 4) + body;
}

inline std::string Record(std::string_view tag, const std::string& body) {
  return RecordDeclaring(tag, static_cast<std::uint32_t>(body.size()), body);
}

/// The record of a list: a count and that many records.
inline std::string ListRecord(std::string_view tag, int count, const std::string& records) {
  return Record(tag, BigEndian(static_cast<std::uint64_t>(count), 2) + records);
}

/// `depth` lists, one in the other; the innermost is empty.
inline std::string NestedLists(std::string_view tag, int depth) {
  std::string bytes;
  for (int level = 1; level <= depth; ++level) {
    const auto below = static_cast<std::uint32_t>(depth - level);
    bytes += std::string(tag) + BigEndian(2 + 10 * below, 4) + BigEndian(below > 0 ? 1 : 0, 2);
  }
  return bytes;
}

/// The 1024 bytes that a new document of `rows` rows and 12 columns begins with.
inline std::string HeaderBytes(int rows = 8, char padding = '\0') {
  std::string bytes = "Vex2" + BigEndian(2, 2) + BigEndian(2, 2) + "AbsQRtRnp9C ";
  bytes += BigEndian(static_cast<std::uint64_t>(rows), 2) + BigEndian(12, 2) + BigEndian(0, 4);
  bytes += '\0' + std::string(31, ' ') + "KestZERO" + BigEndian(0, 4);
  for (int row = 0; row < rows; ++row) bytes += BigEndian(4095, 4);
  if (bytes.size() < 1024) bytes.resize(1024, padding);
  return bytes;
}

inline Bytes DocumentOf(const std::string& records) {
  return ToBytes(HeaderBytes() + records);
}

}  // namespace vex2::test
