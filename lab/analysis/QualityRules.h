#pragma once

#include <vector>

#include "lab/analysis/Cq.h"
#include "lab/model/RunReader.h"

namespace vex2::lab {

/// The problems in the results of an analysis, sorted by kind.
std::vector<QualityFinding> FindProblems(const CqAnalysis& analysis);

/// Findings about the parts of a plate that were not measured; `name` is the plate's name in a
/// study.
std::vector<QualityFinding> FindMissingParts(const RunReader& run, const std::string& name);

}  // namespace vex2::lab
