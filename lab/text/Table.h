#pragma once

#include <set>
#include <string>
#include <vector>

#include "lab/text/TextForm.h"

namespace vex2::lab {

/// Rows of texts, UTF-8, as columns side by side under their names. Columns without any text are
/// left out. Where they are too wide, some stand below others, each time after the first column,
/// and a text that is wider by itself is folded: none is cut. `numbers` are the columns, from 0,
/// that end under one another.
std::string DrawTable(const std::vector<std::string>& names,
                      const std::vector<std::vector<std::string>>& rows, const TextForm& form,
                      const std::set<std::size_t>& numbers = {});

}  // namespace vex2::lab
