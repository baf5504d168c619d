#pragma once

#include <string>

#include "lab/check/Repair.h"

namespace vex2::lab {

/// Plans the repair of the document at `path`. Throws an error if it cannot be read or is not a
/// document.
RepairPlan PlanRepair(const std::string& path);

}  // namespace vex2::lab
