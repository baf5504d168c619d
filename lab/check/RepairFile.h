#pragma once

#include <string>

#include "lab/check/Repair.h"

namespace vex2::lab {

/// Copies the document at `path` durably to a new file beside it: "PATH.backup", or that name with
/// a number if it exists already. Returns the path of the copy. If it throws an error, it leaves no
/// copy.
std::string BackUp(const std::string& path);

/// Replaces the document at `path` by a copy of `backup` to which the changes in `plan` are
/// applied. If it throws an error, the document is unchanged. At every moment the path holds either
/// the old document or the new one.
void ApplyRepair(const RepairPlan& plan, const std::string& backup, const std::string& path);

}  // namespace vex2::lab
