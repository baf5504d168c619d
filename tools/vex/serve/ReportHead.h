#pragma once

#include "lab/picture/Report.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

/// The settings of a report that the command makes: program, version and current time.
ReportSettings ReportHead();

}  // namespace vex2::tool
