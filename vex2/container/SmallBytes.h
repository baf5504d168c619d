#pragma once

#include <cstddef>
#include <cstdint>

#include "vex2/framework/Language.h"

namespace vex2 {

/// The bytes that a component owns. Most are short texts. These are stored within the object, so
/// that they need no allocation.
class SmallBytes {
 public:
  SmallBytes() = default;
  ~SmallBytes() { Clear(); }
  SmallBytes(const SmallBytes&) = delete;
  SmallBytes& operator=(const SmallBytes&) = delete;

  /// The first byte; null if there are no bytes.
  std::uint8_t* Get() { return bytes_; }
  /// The first byte; null if there are no bytes.
  const std::uint8_t* Get() const { return bytes_; }

  /// Replaces the bytes by `count` uninitialised bytes; if `count` is 0, by none. If this throws
  /// `std::bad_alloc`, there are no bytes afterwards.
  void Allocate(std::size_t count) {
    Clear();
    if (count != 0) bytes_ = count <= sizeof within_ ? within_ : new std::uint8_t[count];
  }
  /// Releases the bytes.
  void Clear() noexcept {
    if (bytes_ != within_) delete[] bytes_;
    bytes_ = nullptr;
  }

 private:
  std::uint8_t* bytes_ = nullptr;
  std::uint8_t within_[16];
};

}  // namespace vex2
