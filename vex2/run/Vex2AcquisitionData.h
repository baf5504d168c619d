#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"
#include "vex2/run/Vex2FrameData.h"

/// A whole data block as callers pass it. Does not own its frames, which must all have the same
/// number of wells.
struct VEX2_API Vex2AcquisitionData {
  Vex2FrameData* frames = nullptr;  ///< `frameCount` frames, which the caller owns, or null
  std::int32_t frameCount = 0;      ///< the number of frames
};
