#pragma once

#include <cstdint>

#include "vex2/framework/CObject.h"
#include "vex2/framework/CString.h"

/// One dye in a list of dyes: a CObList whose owner deletes the elements.
class VEX2_API Vex2DyeInfo : public CObject {
 public:
  std::uint32_t values[4] = {};  ///< the first four values of the spectrum; 0 if it has fewer
  CString name;                  ///< in upper case
  std::int32_t index = -1;       ///< the spectrum's `dyeIndex`

  const CRuntimeClass* GetRuntimeClass() const override;
  /// The run-time description of this class.
  static const CRuntimeClass* ClassRecord();
};
