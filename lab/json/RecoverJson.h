#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "lab/recover/RecoverReport.h"

namespace vex2::lab {

/// The report of the recovery from the document at `source` to `target`, as an object.
nlohmann::ordered_json RecoverJson(const RecoverReport& report, const std::string& source,
                                   const std::string& target);

}  // namespace vex2::lab
