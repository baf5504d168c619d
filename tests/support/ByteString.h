#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/Files.h"

/// Builds bytes one by one, without the library under test.
namespace vex2::test {

/// Builds the bytes of a document; numbers are big-endian.
class ByteString {
 public:
  ByteString& Text(std::string_view text) {
    bytes_.insert(bytes_.end(), text.begin(), text.end());
    return *this;
  }
  ByteString& Byte(unsigned value) { return Number(value, 1); }
  ByteString& Short(unsigned value) { return Number(value, 2); }
  ByteString& Long(unsigned long value) { return Number(value, 4); }
  ByteString& Number(std::uint64_t value, int width) {
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8) {
      bytes_.push_back(static_cast<std::uint8_t>(value >> static_cast<unsigned>(shift) & 0xFFU));
    }
    return *this;
  }
  ByteString& Raw(const Bytes& bytes) {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    return *this;
  }
  ByteString& Zeros(std::size_t count) {
    bytes_.insert(bytes_.end(), count, 0);
    return *this;
  }
  operator const Bytes&() const { return bytes_; }

 private:
  Bytes bytes_;
};

inline std::uint32_t LongAt(const Bytes& bytes, std::size_t at) {
  return std::uint32_t{bytes.at(at)} << 24U | std::uint32_t{bytes.at(at + 1)} << 16U |
         std::uint32_t{bytes.at(at + 2)} << 8U | bytes.at(at + 3);
}

inline void SetLongAt(Bytes& bytes, std::size_t at, unsigned long value) {
  const Bytes word = ByteString().Long(value);
  std::copy(word.begin(), word.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
}

inline Bytes Slice(const Bytes& bytes, std::size_t from, std::size_t count) {
  const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(from);
  return {first, first + static_cast<std::ptrdiff_t>(count)};
}

/// Joins the parts.
inline Bytes Join(const std::vector<Bytes>& parts) {
  ByteString bytes;
  for (const Bytes& part : parts) bytes.Raw(part);
  return bytes;
}

}  // namespace vex2::test
