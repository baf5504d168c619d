#pragma once

#include <cstdint>

#include "vex2/framework/CString.h"

/// A detector as callers pass it: a name, reporter and quencher dyes, a colour, and the initial
/// settings of an analysis. Copies are independent.
struct Vex2Detector {
  CString name;                     ///< the key in the list of detectors; case-sensitive
  CString reporterDye;              ///< the name of the dye
  CString quencherDye;              ///< the name of the dye
  CString description;              ///< a text for people
  CString comment;                  ///< a text for people
  CString owner;                    ///< a text for people
  CString location;                 ///< a text for people
  std::uint8_t color[3] = {};       ///< three bytes, whose order applications define
  std::int32_t dateCreated = 0;     ///< 0 or less means no date
  std::int32_t dateModified = 0;    ///< 0 or less means no date
  std::uint16_t baselineStart = 6;  ///< of the analysis, stored unchanged
  std::uint16_t baselineEnd = 15;   ///< of the analysis, stored unchanged
  float threshold = 0.2F;           ///< of the analysis, stored unchanged
  std::uint16_t analysisFlags = 0;  ///< stored unchanged
  std::int32_t autoBaseline = 0;    ///< 0 or 1; documents keep only the low byte
  std::int32_t autoThreshold = 0;   ///< 0 or 1; documents keep only the low byte

  /// Sets all fields to the values of a new record.
  void Clear() { *this = Vex2Detector(); }
};
