#pragma once

#include <nlohmann/json_fwd.hpp>

#include "vex2/manager/Vex2FileManager.h"

namespace vex2::tool {

/// The plate's rows and columns, and in "wells" what stands in each well that is set up.
nlohmann::ordered_json DescribeWells(const Vex2FileManager& document);

/// A list of the plate's detectors, each with all its fields.
nlohmann::ordered_json DescribeDetectors(const Vex2FileManager& plate);

}  // namespace vex2::tool
