#pragma once

#include <nlohmann/json_fwd.hpp>

#include "vex2/manager/Vex2FileManager.h"

namespace vex2::lab {

/// The plate's rows and columns, and in "wells" the sample and detectors of each well in the setup.
nlohmann::ordered_json DescribeWells(const Vex2FileManager& document);

/// A list of the plate's detectors, each with all its fields.
nlohmann::ordered_json DescribeDetectors(const Vex2FileManager& plate);

/// A list of the names of the dyes that the plate requires.
nlohmann::ordered_json DescribeDyes(const Vex2FileManager& plate);

}  // namespace vex2::lab
