#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"

/// The readings of one well in one frame. The caller sets `frameIndex` and `well`; the library sets
/// the other fields. Owns its values.
struct VEX2_API KestorSpectrum {
  std::uint32_t* values = nullptr;  ///< `valueCount` values, made with new[], or null
  std::int32_t valueCount = 0;      ///< the number of values
  std::int32_t frameIndex = 0;      ///< from 0
  std::int32_t well = 0;            ///< from 1
  std::int32_t failed = 0;          ///< set to 1 if the well record does not exist
  std::int32_t wellValue = 0;       ///< the first leading value of the well record

  KestorSpectrum() = default;
  /// A spectrum with `count` values, all 0. If `count` is 0 or negative, there are no values.
  explicit KestorSpectrum(std::int32_t count)
      : values(count > 0 ? new std::uint32_t[static_cast<std::uint32_t>(count)]() : nullptr),
        valueCount(count > 0 ? count : 0) {}
  KestorSpectrum(const KestorSpectrum&) = delete;
  KestorSpectrum& operator=(const KestorSpectrum&) = delete;
  ~KestorSpectrum() { delete[] values; }
};
