#pragma once

#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>

#include "vex2/framework/CFile.h"

/// How documents store numbers. Integers are big-endian. Floats are little-endian; this must not
/// change, or existing documents could not be read.
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

/// Reads exactly `count` bytes. Returns false if fewer are left in the file; these are then
/// consumed.
[[nodiscard]] inline bool ReadExactly(CFile& file, void* bytes, std::size_t count) {
  return file.ReadBuffered(bytes, count) || file.Read(bytes, count) == count;
}

/// Reads one big-endian value. Returns false if the file ends within the value, which is then
/// unchanged.
template <std::unsigned_integral Value>
[[nodiscard]] bool ReadField(CFile& file, Value& value) {
  std::array<std::uint8_t, sizeof(Value)> bytes{};
  if (!ReadExactly(file, bytes.data(), bytes.size())) return false;
  value = LoadBig<Value>(bytes.data());
  return true;
}

template <std::unsigned_integral Value>
void WriteField(CFile& file, Value value) {
  std::array<std::uint8_t, sizeof(Value)> bytes{};
  StoreBig(value, bytes.data());
  file.Write(bytes.data(), bytes.size());
}

/// Reads one little-endian float. Returns false if the file ends within the value, which is then
/// unchanged.
[[nodiscard]] inline bool ReadField(CFile& file, float& value) {
  std::array<std::uint8_t, sizeof(float)> bytes{};
  if (!ReadExactly(file, bytes.data(), bytes.size())) return false;
  const std::uint32_t bits = std::uint32_t{bytes[3]} << 24U | std::uint32_t{bytes[2]} << 16U |
                             std::uint32_t{bytes[1]} << 8U | bytes[0];
  value = std::bit_cast<float>(bits);
  return true;
}

inline void WriteField(CFile& file, float value) {
  const auto bits = std::bit_cast<std::uint32_t>(value);
  const std::array<std::uint8_t, sizeof(float)> bytes = {
      static_cast<std::uint8_t>(bits & 0xFFU), static_cast<std::uint8_t>(bits >> 8U & 0xFFU),
      static_cast<std::uint8_t>(bits >> 16U & 0xFFU), static_cast<std::uint8_t>(bits >> 24U)};
  file.Write(bytes.data(), bytes.size());
}

/// Reads bytes that do not form a number. Returns false if the file ends within them; `value` is
/// then unchanged.
template <std::size_t Count>
[[nodiscard]] bool ReadField(CFile& file, std::array<std::uint8_t, Count>& value) {
  std::array<std::uint8_t, Count> bytes{};
  if (!ReadExactly(file, bytes.data(), bytes.size())) return false;
  value = bytes;
  return true;
}

template <std::size_t Count>
void WriteField(CFile& file, const std::array<std::uint8_t, Count>& value) {
  file.Write(value.data(), value.size());
}

/// Ends a read that needs more bytes than the file has left: consumes the rest and returns false.
[[nodiscard]] inline bool ShortRead(CFile& file) {
  file.SeekToEnd();
  return false;
}

}  // namespace vex2
