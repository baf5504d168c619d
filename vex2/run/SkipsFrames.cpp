#include "vex2/run/SkipsFrames.h"

namespace vex2 {

// Here, so that the class is one and the same in every library that asks a file for it.
SkipsFrames::~SkipsFrames() = default;

}  // namespace vex2
