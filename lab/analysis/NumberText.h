#pragma once

#include <string>

namespace vex2::lab {

/// The number with three digits, without exponent, for sentences: "0.0123", "25.4", "1230".
std::string NumberText(double number);

/// The number for output that programs read, without trailing zeros and without exponent. It has
/// six decimals; small numbers have more, so that six digits remain.
std::string MeasuredText(double number);

/// The number with at most `decimals` decimals, without trailing zeros and without exponent.
std::string DecimalsText(double number, int decimals);

}  // namespace vex2::lab
