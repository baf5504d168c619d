#pragma once

#include "vex2/framework/Export.h"

/// A multicomponent result of one well. An analysis library computes and defines it. A manager
/// stores and destroys it for its owner, and never uses its content.
class VEX2_API IDAMCMatrix {
 public:
  virtual ~IDAMCMatrix() = default;
};
