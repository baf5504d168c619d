#pragma once

#include "vex2/framework/Export.h"

/// Clipped reporter readings of one well. An analysis library computes and defines them. A manager
/// owns and destroys those that are stored in it, and never uses their content.
class VEX2_API IDAClippedMatrix {
 public:
  virtual ~IDAClippedMatrix() = default;
};
