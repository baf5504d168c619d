#pragma once

#include <string>
#include <string_view>

namespace vex2::lab {

/// How wide a character is, in any unit; the character is UTF-8.
using WidthOfCharacter = double(std::string_view character);

/// The sum of the widths of the characters of `text`, which is UTF-8.
double WidthOfText(std::string_view text, WidthOfCharacter* widthOf);

/// `text` as it is where it is no wider than `room`, else with `ellipsis` in place of its middle:
/// names of a series differ at their ends.
std::string Shortened(std::string_view text, double room, WidthOfCharacter* widthOf,
                      std::string_view ellipsis);

}  // namespace vex2::lab
