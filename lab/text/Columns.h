#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vex2::lab {

/// The number of columns that UTF-8 without control characters takes on a terminal. Every character
/// counts as one column: the characters of Latin-1 are not wide.
std::size_t Columns(std::string_view utf8);
/// `utf8` cut to `width` columns. If something is cut off, the result ends with `ellipsis`.
std::string CutTo(std::string_view utf8, std::size_t width, std::string_view ellipsis);
/// Fills `text` with blanks up to `width` columns: PadRight after the text, PadLeft before it.
std::string PadRight(std::string text, std::size_t width);
std::string PadLeft(std::string text, std::size_t width);

/// Breaks `text` into lines of at most `width` columns. The first line continues a line that
/// already has `indent` columns; the other lines are indented by `indent` columns. Words that are
/// too wide are not broken.
std::string Folded(std::string_view text, std::size_t indent, std::size_t width);

/// `utf8` in ASCII: other characters become \uNNNN, or \UNNNNNNNN beyond 16 bits.
std::string ToAscii(std::string_view utf8);

}  // namespace vex2::lab
