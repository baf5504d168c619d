#pragma once

#include <cstdint>

#include "vex2/framework/CString.h"

/// A detector as callers pass it: a name, reporter and quencher dyes, a colour, and the initial
/// settings of an analysis. A value: copies are independent.
struct Vex2Detector {
  CString name;  ///< the key in the list of detectors; case-sensitive
  CString reporterDye;
  CString quencherDye;
  CString description;
  CString comment;
  CString owner;
  CString location;
  std::uint8_t color[3] = {};
  std::int32_t dateCreated = 0;  ///< 0 or below means none
  std::int32_t dateModified = 0;
  std::uint16_t baselineStart = 6;
  std::uint16_t baselineEnd = 15;
  float threshold = 0.2F;
  std::uint16_t analysisFlags = 0;  ///< stored unchanged
  std::int32_t autoBaseline = 0;    ///< 0 or 1; documents keep only the low byte of both
  std::int32_t autoThreshold = 0;

  /// Sets all fields to the values of a new record.
  void Clear() { *this = Vex2Detector(); }
};
