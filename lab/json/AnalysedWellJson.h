#pragma once

#include <nlohmann/json_fwd.hpp>

#include "lab/analysis/AmplificationCurve.h"

namespace vex2::lab {

/// A number as an analysis prints it, with the digits that a measurement has; null for one that is
/// not finite.
nlohmann::ordered_json MeasuredJson(double value);

/// An object with the plate, where it is of a study, the well, its sample and its detector.
nlohmann::ordered_json PlaceJson(const AnalysedWell& well);

}  // namespace vex2::lab
