#pragma once

#include <cstdint>

#include "vex2/framework/CObject.h"
#include "vex2/framework/Export.h"

/// The threshold cycle of one well.
class VEX2_API CCtEntry : public CObject {
 public:
  CCtEntry() = default;
  /// The threshold cycle `theCt` of the well number `theWell`.
  CCtEntry(std::int32_t theWell, float theCt) : well(theWell), ct(theCt) {}

  std::int32_t well = 0;  ///< from 1
  float ct = 0;           ///< in cycles; `kNoCt` if there is none

  /// The value of `ct` for a well without a threshold cycle.
  static constexpr float kNoCt = -999.1F;
};
