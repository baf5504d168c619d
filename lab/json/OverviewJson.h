#pragma once

#include <nlohmann/json_fwd.hpp>

#include "lab/model/DocumentOverview.h"

namespace vex2::lab {

/// A summary of a document, or of a plate in it.
nlohmann::ordered_json ToJson(const DocumentOverview& overview);

}  // namespace vex2::lab
