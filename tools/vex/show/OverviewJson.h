#pragma once

#include <nlohmann/json_fwd.hpp>

#include "lab/model/DocumentOverview.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

/// The object that `vex info --json` prints, without its version.
nlohmann::ordered_json ToJson(const DocumentOverview& overview);

}  // namespace vex2::tool
