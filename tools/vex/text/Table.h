#pragma once

#include <string>
#include <vector>

#include "tools/vex/text/Terminal.h"

namespace vex2::tool {

/// Rows of texts, UTF-8, as columns side by side under their names. Columns without any text are
/// left out, and lines are cut to the terminal's width.
std::string DrawTable(const std::vector<std::string>& names,
                      const std::vector<std::vector<std::string>>& rows, const Terminal& terminal);

}  // namespace vex2::tool
