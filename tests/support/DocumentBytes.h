#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tests/support/ByteString.h"

/// Builds documents byte by byte, without the library under test.
namespace vex2::test {

/// `value` as `count` bytes, the most significant byte first.
inline std::string BigEndian(std::uint64_t value, int count) {
  const Bytes bytes = ByteString().Number(value, count);
  return {bytes.begin(), bytes.end()};
}

/// A record whose length field is `declared`, even if the body has another length.
inline std::string RecordDeclaring(std::string_view tag, std::uint32_t declared,
                                   const std::string& body) {
  return std::string(tag) + BigEndian(declared, 4) + body;
}

inline std::string Record(std::string_view tag, const std::string& body) {
  return RecordDeclaring(tag, static_cast<std::uint32_t>(body.size()), body);
}

/// The record of a list: the count and the records.
inline std::string ListRecord(std::string_view tag, int count, const std::string& records) {
  return Record(tag, BigEndian(static_cast<std::uint64_t>(count), 2) + records);
}

/// `depth` nested lists; the innermost is empty.
inline std::string NestedLists(std::string_view tag, int depth) {
  std::string bytes;
  for (int level = 1; level <= depth; ++level) {
    const auto below = static_cast<std::uint32_t>(depth - level);
    bytes += std::string(tag) + BigEndian(2 + 10 * below, 4) + BigEndian(below > 0 ? 1 : 0, 2);
  }
  return bytes;
}

/// The 1024 bytes of the header of a new document with `rows` rows and 12 columns, with the given
/// offset of the raw readings.
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

/// The header of a new document as a text, with `rows` rows and filled up with `padding`.
inline std::string HeaderBytes(int rows = 8, char padding = '\0') {
  const Bytes bytes = StoredHeader(0, rows, padding);
  return {bytes.begin(), bytes.end()};
}

inline Bytes DocumentOf(const std::string& records) {
  return ToBytes(HeaderBytes() + records);
}

}  // namespace vex2::test
