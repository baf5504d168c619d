#pragma once

#include <optional>
#include <string>

#include "lab/record/RunPlan.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::lab {

/// A difference between a document and a plan.
struct PlanDifference {
  std::string what;      ///< as "sample of well A1"
  std::string recorded;  ///< the value in the document, UTF-8; empty if there is none
  std::string given;     ///< the value in the plan, UTF-8; empty if there is none
};

/// The first difference in wells, detectors, dyes, calibration, settings or program, in this order;
/// nothing if there is none. Does not compare the log and the readings.
std::optional<PlanDifference> FindDifference(const Vex2FileManager& document, const RunPlan& plan);

}  // namespace vex2::lab
