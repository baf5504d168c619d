#pragma once

#include <string>

#include "lab/check/Repair.h"

namespace vex2::lab {

/// What there is to repair of the document at `path`. Throws an error when it cannot be read or is
/// none.
RepairPlan PlanRepair(const std::string& path);

}  // namespace vex2::lab
