#pragma once

#include "vex2/framework/Export.h"

/// Clipped reporter readings of one well, as an analysis library computes and defines it. Documents
/// keep it for its owner and destroy it; they never look inside.
class VEX2_API IDAClippedMatrix {
 public:
  virtual ~IDAClippedMatrix() = default;
};
