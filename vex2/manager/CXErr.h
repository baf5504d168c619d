#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"

/// An error value for hosts: the class number in the high 16 bits, the message number in the low
/// 16 bits. The library neither returns nor throws it.
class VEX2_API CXErr {
 public:
  CXErr() = default;
  CXErr(std::int32_t id) : id_(id) {}  // NOLINT: hosts assign plain numbers

  std::int32_t GetID() const { return id_; }
  std::int16_t GetClassID() const { return static_cast<std::int16_t>(bits() >> 16U); }
  std::int16_t GetMsgID() const { return static_cast<std::int16_t>(bits() & 0xFFFFU); }
  /// Replace one half and keep the other.
  void SetClassID(std::int16_t id) { set(bits() & 0xFFFFU, half(id) << 16U); }
  void SetMsgID(std::int16_t id) { set(bits() & 0xFFFF0000U, half(id)); }

  bool operator==(std::int32_t id) const { return id_ == id; }
  bool operator==(const CXErr& other) const { return id_ == other.id_; }
  bool operator!=(std::int32_t id) const { return id_ != id; }

 private:
  static std::uint32_t half(std::int16_t id) { return static_cast<std::uint16_t>(id); }
  std::uint32_t bits() const { return static_cast<std::uint32_t>(id_); }
  void set(std::uint32_t kept, std::uint32_t given) {
    id_ = static_cast<std::int32_t>(kept | given);
  }

  std::int32_t id_ = 0;
};
