#pragma once

#include <string>
#include <string_view>

namespace vex2::lab {

/// A function that returns the width of a UTF-8 character, in any unit.
using WidthOfCharacter = double(std::string_view character);

/// The sum of the widths of the characters of `text`, in UTF-8.
double WidthOfText(std::string_view text, WidthOfCharacter* widthOf);

/// Shortens `text` if it is wider than `room`: `ellipsis` replaces its middle, since names of a
/// series differ at their ends.
std::string Shortened(std::string_view text, double room, WidthOfCharacter* widthOf,
                      std::string_view ellipsis);

}  // namespace vex2::lab
