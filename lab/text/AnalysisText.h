#pragma once

#include <string>
#include <vector>

#include "lab/analysis/Cq.h"
#include "lab/analysis/Melt.h"
#include "lab/text/TextForm.h"

namespace vex2::lab {

/// Wells, detectors, relative quantities and findings of an analysis, as text for users.
std::string CqText(const CqAnalysis& analysis, const TextForm& form);

/// The melting peaks, one line for each.
std::string MeltText(const std::vector<MeltCurve>& curves, const TextForm& form);

}  // namespace vex2::lab
