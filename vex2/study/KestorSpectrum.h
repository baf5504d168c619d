#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"

/// The readings of one well in one frame. `frameIndex` and `well` say which, the rest is filled.
/// Owns its values.
struct VEX2_API KestorSpectrum {
  std::uint32_t* values = nullptr;  ///< `valueCount` of them, made with new[], or null
  std::int32_t valueCount = 0;
  std::int32_t frameIndex = 0;  ///< from 0
  std::int32_t well = 0;        ///< from 1
  std::int32_t failed = 0;      ///< becomes 1 when there is no such record
  std::int32_t wellValue = 0;   ///< the first of the record's leading values

  KestorSpectrum() = default;
  /// A spectrum with room for `count` values, which are 0; none for 0 and below.
  explicit KestorSpectrum(std::int32_t count)
      : values(count > 0 ? new std::uint32_t[static_cast<std::uint32_t>(count)]() : nullptr),
        valueCount(count > 0 ? count : 0) {}
  KestorSpectrum(const KestorSpectrum&) = delete;
  KestorSpectrum& operator=(const KestorSpectrum&) = delete;
  ~KestorSpectrum() { delete[] values; }
};
