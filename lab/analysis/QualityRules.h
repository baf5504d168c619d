#pragma once

#include <vector>

#include "lab/analysis/Comparison.h"
#include "lab/analysis/Cq.h"
#include "lab/analysis/StageReadings.h"
#include "lab/model/RunReader.h"

namespace vex2::lab {

/// The problems in the results of an analysis, sorted by kind.
std::vector<QualityFinding> FindProblems(const CqAnalysis& analysis);

/// Findings about standards that give no curve, and about set baselines that were not used.
std::vector<QualityFinding> FindSettingProblems(const CqAnalysis& analysis);

/// Findings about samples that are not compared although the document names a calibrator or an
/// endogenous control.
std::vector<QualityFinding> FindReferenceProblems(const CqAnalysis& analysis,
                                                  const Reference& reference);

/// The finding that a plate of a study was not analysed, with the reason.
std::vector<QualityFinding> FindSkipped(const SkippedPlate& plate);

/// Findings about the parts of a plate that were not measured; `name` is the plate's name in a
/// study.
std::vector<QualityFinding> FindMissingParts(const RunReader& run, const std::string& name);

/// "A1", in a study "plate1 A1".
std::string PlaceOf(const AnalysedWell& well);

/// "A1", "A1, A2 and 7 more": the first of `count` names.
std::string ListOf(const std::vector<std::string>& names, std::size_t count);

}  // namespace vex2::lab
