#pragma once

#include <vector>

#include "lab/analysis/Cq.h"
#include "lab/model/RunReader.h"

namespace vex2::lab {

/// The problems in the results of an analysis, sorted by kind.
std::vector<QualityFinding> FindProblems(const CqAnalysis& analysis);

/// Findings about what was not measured of a plate; `name` is its name in a study.
std::vector<QualityFinding> FindMissingParts(const RunReader& run, const std::string& name);

}  // namespace vex2::lab
