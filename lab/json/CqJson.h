#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "lab/analysis/Cq.h"
#include "lab/analysis/Melt.h"

/// Results of an analysis as JSON objects, without the curves. `PrintJson` adds the key "version".
namespace vex2::lab {

/// The quantification cycles of the document at `path`.
nlohmann::ordered_json DescribeCq(const CqAnalysis& analysis, const std::string& path);

/// The melting peaks of the document at `path`.
nlohmann::ordered_json DescribeMelt(const std::vector<MeltCurve>& curves, const std::string& path);

}  // namespace vex2::lab
