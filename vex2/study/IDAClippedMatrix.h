#pragma once

#include "vex2/framework/Export.h"

/// Clipped reporter readings of one well, computed and defined by an analysis library. A manager
/// keeps it for its owner and destroys it, and never uses its content.
class VEX2_API IDAClippedMatrix {
 public:
  virtual ~IDAClippedMatrix() = default;
};
