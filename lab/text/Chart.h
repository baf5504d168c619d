#pragma once

#include <string>
#include <vector>

#include "lab/text/TextForm.h"

namespace vex2::lab {

/// One block character for each value. The lowest block stands for 0, or for the least value if
/// that is below 0; the highest block stands for the largest value. Values that are not finite are
/// blanks.
std::string Sparkline(const std::vector<double>& values, const TextForm& form);

/// A bar chart, `height` lines high. The scale is to the left, and the numbers of the values, which
/// count from `first`, are below. The bars are as wide as there is room for, up to a limit.
std::string DrawBars(const std::vector<double>& values, int height, const TextForm& form,
                     std::size_t first = 1);

/// A number for a table, with at most four digits and without trailing zeros.
std::string ShortNumber(double number);

}  // namespace vex2::lab
