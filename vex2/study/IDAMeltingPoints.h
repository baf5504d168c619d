#pragma once

#include "vex2/framework/Export.h"

/// Melting points of one well, computed and defined by an analysis library. A manager keeps it for
/// its owner and destroys it, and never uses its content.
class VEX2_API IDAMeltingPoints {
 public:
  virtual ~IDAMeltingPoints() = default;
};
