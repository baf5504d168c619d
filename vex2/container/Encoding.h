#pragma once

#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>

#include "vex2/container/Status.h"
#include "vex2/framework/CFile.h"

/// The primitive encodings of documents. Integers are big-endian; floats alone are little-endian,
/// and stay so, or existing documents would not read back.
namespace vex2 {

template <std::unsigned_integral Value>
constexpr Value LoadBig(const std::uint8_t* bytes) noexcept {
  Value value = 0;
  for (std::size_t i = 0; i < sizeof(Value); ++i) {
    value = static_cast<Value>((sizeof(Value) > 1 ? value << 8U : 0U) | bytes[i]);
  }
  return value;
}

template <std::unsigned_integral Value>
constexpr void StoreBig(Value value, std::uint8_t* bytes) noexcept {
  for (std::size_t i = sizeof(Value); i-- > 0;) {
    bytes[i] = static_cast<std::uint8_t>(value & 0xFFU);
    if constexpr (sizeof(Value) > 1) value = static_cast<Value>(value >> 8U);
  }
}

/// Reads exactly `count` bytes; `kReadFailed` when there are fewer, and then all of those that
/// there were are consumed.
[[nodiscard]] inline int ReadBytes(CFile& file, void* bytes, std::size_t count) {
  return file.Read(bytes, count) == count ? kSuccess : kReadFailed;
}

/// Reads one big-endian value; on a short read `value` is untouched.
template <std::unsigned_integral Value>
[[nodiscard]] int ReadValue(CFile& file, Value& value) {
  std::array<std::uint8_t, sizeof(Value)> bytes{};
  const int status = ReadBytes(file, bytes.data(), bytes.size());
  if (status == kSuccess) value = LoadBig<Value>(bytes.data());
  return status;
}

template <std::unsigned_integral Value>
void WriteValue(CFile& file, Value value) {
  std::array<std::uint8_t, sizeof(Value)> bytes{};
  StoreBig(value, bytes.data());
  file.Write(bytes.data(), bytes.size());
}

/// Reads a float as it is stored; on a short read `value` is untouched.
[[nodiscard]] inline int ReadValue(CFile& file, float& value) {
  std::array<std::uint8_t, sizeof(float)> bytes{};
  const int status = ReadBytes(file, bytes.data(), bytes.size());
  if (status == kSuccess) {
    const std::uint32_t bits = std::uint32_t{bytes[3]} << 24U | std::uint32_t{bytes[2]} << 16U |
                               std::uint32_t{bytes[1]} << 8U | bytes[0];
    value = std::bit_cast<float>(bits);
  }
  return status;
}

inline void WriteValue(CFile& file, float value) {
  const auto bits = std::bit_cast<std::uint32_t>(value);
  const std::array<std::uint8_t, sizeof(float)> bytes = {
      static_cast<std::uint8_t>(bits & 0xFFU), static_cast<std::uint8_t>(bits >> 8U & 0xFFU),
      static_cast<std::uint8_t>(bits >> 16U & 0xFFU), static_cast<std::uint8_t>(bits >> 24U)};
  file.Write(bytes.data(), bytes.size());
}

/// Bytes that are no number stand as they are; on a short read `value` is untouched.
template <std::size_t Count>
[[nodiscard]] int ReadValue(CFile& file, std::array<std::uint8_t, Count>& value) {
  std::array<std::uint8_t, Count> bytes{};
  const int status = ReadBytes(file, bytes.data(), bytes.size());
  if (status == kSuccess) value = bytes;
  return status;
}

template <std::size_t Count>
void WriteValue(CFile& file, const std::array<std::uint8_t, Count>& value) {
  file.Write(value.data(), value.size());
}

/// What a read of more bytes than there are comes to: they are consumed, and the status says so.
[[nodiscard]] inline int ShortRead(CFile& file) {
  file.SeekToEnd();
  return kReadFailed;
}

}  // namespace vex2
