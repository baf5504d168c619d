#pragma once

#include <string>

#include "lab/picture/Report.h"

namespace vex2::lab {

/// The settings of a report that `program` makes now.
ReportSettings ReportHead(std::string program);

}  // namespace vex2::lab
