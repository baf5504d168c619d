#pragma once

#include <cstdint>

#include "vex2/framework/CObject.h"
#include "vex2/framework/CString.h"

/// One dye of a list of dyes, which is a CObList whose owner deletes the elements.
class VEX2_API Vex2DyeInfo : public CObject {
 public:
  std::uint32_t values[4] = {};  ///< the first four of the dye's spectrum, 0 where it has fewer
  CString name;                  ///< in upper case
  std::int32_t index = -1;       ///< the spectrum's `dyeIndex`

  const CRuntimeClass* GetRuntimeClass() const override;
  static const CRuntimeClass* ClassRecord();
};
