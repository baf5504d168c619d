#pragma once

#include "vex2/framework/Export.h"

namespace vex2 {

/// A file whose readers skip the frames of data blocks, so that reading a document takes the same
/// time however long the run was. A data block that is read from such a file has its head and its
/// length, and so its number of frames, but its frames look as if they had never been filled. Do
/// not save a document with such a block. To be used as a second base class of a class that derives
/// from `CFile`. Internal.
class VEX2_API SkipsFrames {
 public:
  virtual ~SkipsFrames();
};

}  // namespace vex2
