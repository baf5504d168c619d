#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"

/// One detector in one well, as callers pass it. Owns its two texts.
struct VEX2_API Vex2WellDetector {
  char* detectorName = nullptr;         ///< with a terminating zero, made with new[], or null
  std::int32_t detectorNameLength = 0;  ///< characters
  char* task = nullptr;                 ///< e.g. "UNKN" or "STND"; stored unchanged
  std::int32_t taskLength = 0;          ///< characters
  float quantity = 0;                   ///< of the sample; applications define the unit
  bool used = true;                     ///< whether the detector is in use in the well

  Vex2WellDetector() = default;
  Vex2WellDetector(const Vex2WellDetector&) = delete;
  Vex2WellDetector& operator=(const Vex2WellDetector&) = delete;
  ~Vex2WellDetector();

  /// Copies `length` characters into a buffer that the record owns. Allocates a new buffer only if
  /// the text becomes longer. If `text` is null, sets only the length.
  void SetDetectorName(const char* text, std::int32_t length);
  /// Copies `length` characters into a buffer that the record owns. Allocates a new buffer only if
  /// the text becomes longer. If `text` is null, sets only the length.
  void SetTask(const char* text, std::int32_t length);
};
