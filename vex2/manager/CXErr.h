#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"

/// An error value for hosts: the class number in the high 16 bits, the message number in the low
/// 16 bits. The library neither returns nor throws it.
class VEX2_API CXErr {
 public:
  /// The value 0.
  CXErr() = default;
  /// Holds `id` as the whole value.
  CXErr(std::int32_t id) : id_(id) {}  // NOLINT: hosts assign plain numbers

  /// The whole value.
  std::int32_t GetID() const { return id_; }
  /// The class number: the high 16 bits, with their sign.
  std::int16_t GetClassID() const { return static_cast<std::int16_t>(bits() >> 16U); }
  /// The message number: the low 16 bits, with their sign.
  std::int16_t GetMsgID() const { return static_cast<std::int16_t>(bits() & 0xFFFFU); }
  /// Replaces the class number and keeps the message number.
  void SetClassID(std::int16_t id) { set(bits() & 0xFFFFU, half(id) << 16U); }
  /// Replaces the message number and keeps the class number.
  void SetMsgID(std::int16_t id) { set(bits() & 0xFFFF0000U, half(id)); }

  /// Whether the whole value is `id`.
  bool operator==(std::int32_t id) const { return id_ == id; }
  /// Whether the whole values are equal.
  bool operator==(const CXErr& other) const { return id_ == other.id_; }
  /// Whether the whole value is not `id`.
  bool operator!=(std::int32_t id) const { return id_ != id; }

 private:
  static std::uint32_t half(std::int16_t id) { return static_cast<std::uint16_t>(id); }
  std::uint32_t bits() const { return static_cast<std::uint32_t>(id_); }
  void set(std::uint32_t kept, std::uint32_t given) {
    id_ = static_cast<std::int32_t>(kept | given);
  }

  std::int32_t id_ = 0;
};
