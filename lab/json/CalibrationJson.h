#pragma once

#include <nlohmann/json_fwd.hpp>

#include "lab/model/Calibration.h"

namespace vex2::lab {

/// Both parts of a calibration with their heads and spectra; null for a missing part.
nlohmann::ordered_json ToJson(const Calibration& calibration);

}  // namespace vex2::lab
