#pragma once

#include <ostream>
#include <string>

#include "lab/recover/RecoverReport.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

/// Tells a person what became of the damaged document at `source`, now at `target`.
void PrintRecoverText(std::ostream& out, const RecoverReport& report, const std::string& source,
                      const std::string& target);

}  // namespace vex2::tool
