#pragma once

#include <set>
#include <string>
#include <vector>

#include "lab/text/TextForm.h"

namespace vex2::lab {

/// Draws rows of UTF-8 texts as a table with column names. Columns without any text are left out.
/// If the columns do not fit side by side, they are divided into groups, one below the other; each
/// group begins with the first column. A text that is too wide by itself is broken into lines; none
/// is cut. `numbers` are the indexes, from 0, of the columns that are aligned to the right.
std::string DrawTable(const std::vector<std::string>& names,
                      const std::vector<std::vector<std::string>>& rows, const TextForm& form,
                      const std::set<std::size_t>& numbers = {});

}  // namespace vex2::lab
