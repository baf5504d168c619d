#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"

/// A thermal cycling program as a caller exchanges it: a block of bytes whose content belongs to
/// the instrument. Owns the block.
struct VEX2_API ThermocycleProgram {
  std::uint32_t length = 0;      ///< bytes
  std::uint8_t* data = nullptr;  ///< made with new[], or null

  ThermocycleProgram() = default;
  ThermocycleProgram(const ThermocycleProgram&) = delete;
  ThermocycleProgram& operator=(const ThermocycleProgram&) = delete;
  ~ThermocycleProgram() { Clear(); }

  /// Releases the block; the length becomes 0.
  void Clear();
  /// Makes a new block of `length` bytes, whatever they hold, in place of the old one. Does nothing
  /// when `length` is 0.
  void Allocate();
};
