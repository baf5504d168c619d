#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "lab/check/Findings.h"
#include "lab/recover/RecoverReport.h"

namespace vex2::lab {

/// What was found in the document at `path`, as an object.
nlohmann::ordered_json FindingsJson(const std::string& path, const Findings& findings);

/// What became of the damaged document at `source`, now at `target`, as an object.
nlohmann::ordered_json RecoverJson(const RecoverReport& report, const std::string& source,
                                   const std::string& target);

}  // namespace vex2::lab
