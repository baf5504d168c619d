#pragma once

#include <cstdint>

#include "vex2/framework/CString.h"

/// A named pair of dyes with its colour and the settings that an analysis starts from, as a caller
/// exchanges it. A value: copies are independent.
struct Vex2Detector {
  CString name;  ///< the key of the list of detectors; case counts
  CString reporterDye;
  CString quencherDye;
  CString description;
  CString comment;
  CString owner;
  CString location;
  std::uint8_t color[3] = {};
  std::int32_t dateCreated = 0;  ///< 0 is none, and so is what is below
  std::int32_t dateModified = 0;
  std::uint16_t baselineStart = 6;
  std::uint16_t baselineEnd = 15;
  float threshold = 0.2F;
  std::uint16_t analysisFlags = 0;  ///< kept as given
  std::int32_t autoBaseline = 0;    ///< 0 or 1; of both, a document keeps the low byte
  std::int32_t autoThreshold = 0;

  /// Makes the record what a new one is.
  void Clear() { *this = Vex2Detector(); }
};
