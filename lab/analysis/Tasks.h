#pragma once

#include "lab/analysis/AmplificationCurve.h"

namespace vex2::lab {

/// Whether the well is a no-template control.
inline bool IsControl(const AnalysedWell& well) {
  return well.task == "NTC";
}

/// Whether the well is a standard with a known quantity above 0.
inline bool IsStandard(const AnalysedWell& well) {
  return well.task == "STND" && well.quantity.value_or(0) > 0;
}

/// Whether the quantity in the well is unknown, so that it can be calculated.
inline bool HasUnknownQuantity(const AnalysedWell& well) {
  return !IsControl(well) && !IsStandard(well);
}

}  // namespace vex2::lab
