#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"

/// The thermal cycling program as callers pass it: bytes whose meaning the instrument defines. Owns
/// the bytes.
struct VEX2_API ThermocycleProgram {
  std::uint32_t length = 0;      ///< of `data`, in bytes
  std::uint8_t* data = nullptr;  ///< made with new[], or null

  ThermocycleProgram() = default;
  ThermocycleProgram(const ThermocycleProgram&) = delete;
  ThermocycleProgram& operator=(const ThermocycleProgram&) = delete;
  ~ThermocycleProgram() { Clear(); }

  /// Releases the bytes; the length becomes 0.
  void Clear();
  /// Replaces the bytes by `length` uninitialised ones. Does nothing if `length` is 0.
  void Allocate();
};
