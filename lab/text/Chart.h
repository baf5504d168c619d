#pragma once

#include <string>
#include <vector>

#include "lab/text/TextForm.h"

namespace vex2::lab {

/// One block character for each value. The lowest block stands for 0, or for the least value if
/// that is below 0; the highest block stands for the largest value. Values that are not numbers are
/// blanks.
std::string Sparkline(const std::vector<double>& values, const TextForm& form);

/// A bar for each value, `height` lines high, with the scale to the left and the values' numbers,
/// from `first`, below. Bars are as wide as there is room for.
std::string DrawBars(const std::vector<double>& values, int height, const TextForm& form,
                     std::size_t first = 1);

/// A number for a table: four digits at most, and no more than it takes.
std::string ShortNumber(double number);

}  // namespace vex2::lab
