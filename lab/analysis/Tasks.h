#pragma once

#include "lab/analysis/AmplificationCurve.h"

namespace vex2::lab {

/// Whether the well holds no template.
inline bool IsControl(const AnalysedWell& well) {
  return well.task == "NTC";
}

/// Whether the well holds a known quantity, which is above 0.
inline bool IsStandard(const AnalysedWell& well) {
  return well.task == "STND" && well.quantity.value_or(0) > 0;
}

/// Whether the quantity in the well is one to be found.
inline bool HasUnknownQuantity(const AnalysedWell& well) {
  return !IsControl(well) && !IsStandard(well);
}

}  // namespace vex2::lab
