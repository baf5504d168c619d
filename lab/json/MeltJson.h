#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "lab/analysis/Melt.h"

namespace vex2::lab {

/// The melting peaks of the document at `path`.
nlohmann::ordered_json DescribeMelt(const std::vector<MeltCurve>& curves, const std::string& path);

}  // namespace vex2::lab
