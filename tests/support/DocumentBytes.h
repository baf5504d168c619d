#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tests/support/ByteString.h"

/// Documents put together byte by byte, without the library under test.
namespace vex2::test {

/// `value` in `count` bytes, the most significant first.
inline std::string BigEndian(std::uint64_t value, int count) {
  const Bytes bytes = ByteString().Number(value, count);
  return {bytes.begin(), bytes.end()};
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

/// The 1024 bytes that a new document of `rows` rows and 12 columns begins with, with the given
/// position of the raw data.
inline Bytes StoredHeader(std::uint32_t acquisitionDataOffset = 0, int rows = 8,
                          char padding = '\0') {
  constexpr std::size_t kSize = 1024;
  ByteString header;
  header.Text("Vex2").Short(2).Short(2).Text("AbsQ").Text("RtRn").Text("p9C ");
  header.Number(static_cast<std::uint64_t>(rows), 2).Short(12).Long(0);
  header.Byte(0).Text(std::string(31, ' ')).Text("KestZERO").Long(acquisitionDataOffset);
  for (int row = 0; row < rows; ++row) header.Long(4095);
  Bytes bytes = header;
  if (bytes.size() < kSize) bytes.resize(kSize, static_cast<std::uint8_t>(padding));
  return bytes;
}

/// The same as a text.
inline std::string HeaderBytes(int rows = 8, char padding = '\0') {
  const Bytes bytes = StoredHeader(0, rows, padding);
  return {bytes.begin(), bytes.end()};
}

inline Bytes DocumentOf(const std::string& records) {
  return ToBytes(HeaderBytes() + records);
}

}  // namespace vex2::test
