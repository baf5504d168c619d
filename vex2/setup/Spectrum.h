#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"

namespace vex2 {

/// The base of the spectra of pure dyes and of the background. Owns its name and its values; copies
/// are independent.
struct VEX2_API Spectrum {
  std::uint16_t key1 = 0;  ///< both keys are stored unchanged
  std::uint16_t key2 = 0;
  std::uint16_t dyeIndex = 0;
  std::uint8_t nameLength = 0;  ///< characters
  std::uint8_t valueCount = 0;
  char* name = nullptr;  ///< without a terminator, made with new[], or null
  /// One value for each filter, four bytes that are stored unchanged; made with new[], or null.
  std::uint32_t* values = nullptr;

  Spectrum() = default;
  Spectrum(const Spectrum& other);
  Spectrum& operator=(const Spectrum& other);
  ~Spectrum();

  /// Copy `length` characters or `count` values into a new buffer, which is null for 0. If the
  /// pointer is null, the buffer holds zeros.
  void SetName(const char* text, std::uint8_t length);
  /// `source` points to `count` values of four bytes, of any type.
  void SetValues(const void* source, std::uint8_t count);
};

}  // namespace vex2
