#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"

/// The parameters of the analysis of a detector. Analysis applications define their meaning; the
/// six are always copied together.
struct VEX2_API CAnalysisParameters {
  std::int32_t parameter1 = 6;
  std::int32_t parameter2 = 15;
  float parameter3 = 0.2F;
  std::int32_t parameter4 = 0;
  std::int32_t parameter5 = 0;
  std::int32_t parameter6 = 0;

  friend bool operator==(const CAnalysisParameters&, const CAnalysisParameters&) = default;
};
