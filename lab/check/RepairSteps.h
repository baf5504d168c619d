#pragma once

#include <string>

#include "lab/check/Repair.h"

namespace vex2::lab {

/// What there is to repair of the document at `path`. Throws an error when it cannot be read or is
/// none.
RepairPlan PlanRepair(const std::string& path);

/// Copies the document at `path` to a file of its own beside it, durably: "PATH.backup", or with a
/// number after it if that file exists already. Returns its path. Throws an error, and then there
/// is no such file.
std::string BackUp(const std::string& path);

/// Puts what `plan` makes of `backup` in the place of the document at `path`. Throws an error, and
/// then the document is as it was; it is the old or the new one at every moment.
void ApplyRepair(const RepairPlan& plan, const std::string& backup, const std::string& path);

}  // namespace vex2::lab
