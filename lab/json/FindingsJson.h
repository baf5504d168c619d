#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "lab/check/Findings.h"

namespace vex2::lab {

/// The findings in the document at `path`, as an object.
nlohmann::ordered_json FindingsJson(const std::string& path, const Findings& findings);

}  // namespace vex2::lab
