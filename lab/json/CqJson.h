#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "lab/analysis/Cq.h"

namespace vex2::lab {

/// The quantification cycles of the document at `path`.
nlohmann::ordered_json DescribeCq(const CqAnalysis& analysis, const std::string& path);

}  // namespace vex2::lab
