#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"

/// The parameters of the analysis of a detector. Analysis applications define their meaning. The
/// six parameters are always copied together.
struct VEX2_API CAnalysisParameters {
  std::int32_t parameter1 = 6;   ///< stored unchanged
  std::int32_t parameter2 = 15;  ///< stored unchanged
  float parameter3 = 0.2F;       ///< stored unchanged
  std::int32_t parameter4 = 0;   ///< stored unchanged
  std::int32_t parameter5 = 0;   ///< stored unchanged
  std::int32_t parameter6 = 0;   ///< stored unchanged

  /// Whether all six parameters are equal.
  friend bool operator==(const CAnalysisParameters&, const CAnalysisParameters&) = default;
};
