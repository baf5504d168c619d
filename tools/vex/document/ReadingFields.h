#pragma once

#include <string>
#include <vector>

#include "tools/vex/document/RunLog.h"

namespace vex2::tool {

/// The names of a reading's fields as tables have them, with their units.
const std::vector<std::string>& ReadingNames();

/// The fields of a reading, in the order of their names and in their units. `log` states the scale.
std::vector<std::string> ReadingFields(const RunReading& reading, const RunLog& log);

}  // namespace vex2::tool
