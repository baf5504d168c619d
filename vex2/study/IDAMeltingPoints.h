#pragma once

#include "vex2/framework/Export.h"

/// Melting points of one well. An analysis library computes and defines them. A manager owns
/// and destroys those that are stored in it, and never uses their content.
class VEX2_API IDAMeltingPoints {
 public:
  virtual ~IDAMeltingPoints() = default;
};
