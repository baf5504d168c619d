#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"

namespace vex2 {

/// What the spectra of pure dyes and of the background share. Owns its name and its values; a copy
/// has its own.
struct VEX2_API Spectrum {
  std::uint16_t key1 = 0;  ///< the keys are kept as given
  std::uint16_t key2 = 0;
  std::uint16_t dyeIndex = 0;
  std::uint8_t nameLength = 0;  ///< characters
  std::uint8_t valueCount = 0;
  char* name = nullptr;  ///< without a terminator, made with new[], or null
  /// One a filter, four bytes that are kept as given; made with new[], or null.
  std::uint32_t* values = nullptr;

  Spectrum() = default;
  Spectrum(const Spectrum& other);
  Spectrum& operator=(const Spectrum& other);
  ~Spectrum();

  /// Make a new buffer of just this length, null for 0, and copy what is given into it; with a null
  /// pointer it holds zeros.
  void SetName(const char* text, std::uint8_t length);
  /// `source` is `count` values of four bytes, of whichever type the host has them.
  void SetValues(const void* source, std::uint8_t count);
};

}  // namespace vex2
