#include "vex2/run/SkipsFrames.h"

namespace vex2 {

// Defined in a source file, so that all libraries share one definition of the class, and a
// `dynamic_cast` in one library recognises objects of another.
SkipsFrames::~SkipsFrames() = default;

}  // namespace vex2
