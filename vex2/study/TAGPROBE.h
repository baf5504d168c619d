#pragma once

#include "vex2/framework/Export.h"
#include "vex2/study/CAnalysisParameters.h"

/// A detector's name and parameters, as an analysis application passes them.
struct VEX2_API TAGPROBE {
  char name[256] = {};             ///< of the detector; a shorter name ends with a zero byte
  CAnalysisParameters parameters;  ///< of the detector's analysis
};
