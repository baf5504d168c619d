#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"

namespace vex2 {

/// The base of the spectra of pure dyes and of the background. Owns its name and its values; copies
/// are independent.
struct VEX2_API Spectrum {
  std::uint16_t key1 = 0;       ///< stored unchanged
  std::uint16_t key2 = 0;       ///< stored unchanged
  std::uint16_t dyeIndex = 0;   ///< stored unchanged
  std::uint8_t nameLength = 0;  ///< the number of characters
  std::uint8_t valueCount = 0;  ///< the number of values
  char* name = nullptr;         ///< without a terminator, made with new[], or null
  /// One value for each filter, four bytes that are stored unchanged; made with new[], or null.
  std::uint32_t* values = nullptr;

  Spectrum() = default;
  /// Copies name and values into new buffers.
  Spectrum(const Spectrum& other);
  /// Releases the buffers, and copies name and values into new ones.
  Spectrum& operator=(const Spectrum& other);
  ~Spectrum();

  /// Copies `length` characters into a new buffer; null for a length of 0. If `text` is null, the
  /// buffer holds zeros.
  void SetName(const char* text, std::uint8_t length);
  /// Copies `count` values of four bytes, of any type, into a new buffer; null for a count of 0. If
  /// `source` is null, the buffer holds zeros.
  void SetValues(const void* source, std::uint8_t count);
};

}  // namespace vex2
