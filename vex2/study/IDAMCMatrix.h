#pragma once

#include "vex2/framework/Export.h"

/// A multicomponent result of one well. An analysis library computes and defines it. A manager
/// owns and destroys those that are stored in it, and never uses their content.
class VEX2_API IDAMCMatrix {
 public:
  virtual ~IDAMCMatrix() = default;
};
