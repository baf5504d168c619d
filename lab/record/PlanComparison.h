#pragma once

#include <optional>
#include <string>

#include "lab/record/RunPlan.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::lab {

/// Where a document says something else than the plan.
struct PlanDifference {
  std::string what;      ///< as "sample of well A1"
  std::string recorded;  ///< what the document says, UTF-8; empty for nothing
  std::string given;     ///< what the plan says
};

/// The first difference of wells, detectors, dyes, calibration, settings and program, in this
/// order; nothing if the document says what the plan does. Log and readings are not compared.
std::optional<PlanDifference> FindDifference(const Vex2FileManager& document, const RunPlan& plan);

}  // namespace vex2::lab
