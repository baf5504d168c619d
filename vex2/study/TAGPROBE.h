#pragma once

#include "vex2/framework/Export.h"
#include "vex2/study/CAnalysisParameters.h"

/// A probe as an analysis application describes it.
struct VEX2_API TAGPROBE {
  char name[256] = {};  ///< of the detector, ended by a zero byte where it is shorter
  CAnalysisParameters parameters;
};
