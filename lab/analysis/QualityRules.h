#pragma once

#include <vector>

#include "lab/analysis/Cq.h"
#include "lab/model/RunReader.h"

namespace vex2::lab {

/// What is to be looked at in the results, by kinds of problems.
std::vector<QualityFinding> FindProblems(const CqAnalysis& analysis);

/// What was not measured of a plate, which is called `name` in a study.
std::vector<QualityFinding> FindMissingParts(const RunReader& run, const std::string& name);

}  // namespace vex2::lab
