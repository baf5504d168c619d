#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "lab/check/Findings.h"
#include "lab/recover/RecoverReport.h"

namespace vex2::lab {

/// The findings in the document at `path`, as an object.
nlohmann::ordered_json FindingsJson(const std::string& path, const Findings& findings);

/// The report of the recovery from the document at `source` to `target`, as an object.
nlohmann::ordered_json RecoverJson(const RecoverReport& report, const std::string& source,
                                   const std::string& target);

}  // namespace vex2::lab
