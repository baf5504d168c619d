#pragma once

#include "vex2/framework/Export.h"

namespace vex2 {

/// A file from which readers take everything but frames, so that what they cost does not depend on
/// how long the run was. A data block that is read from such a file has its head, its length and so
/// its number of frames, and steps over the frames themselves: they look as if they had never been
/// filled. A document with such a block must not be saved. Internal: for a class that is a `CFile`,
/// too.
class VEX2_API SkipsFrames {
 public:
  virtual ~SkipsFrames();
};

}  // namespace vex2
