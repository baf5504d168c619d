#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vex2::lab {

/// The columns that UTF-8 without control characters takes on a terminal; wide characters are
/// counted as one, since there are none in Latin-1.
std::size_t Columns(std::string_view utf8);
/// `utf8` cut to `width` columns, with `ellipsis` at the end then.
std::string CutTo(std::string_view utf8, std::size_t width, std::string_view ellipsis);
/// `text` with blanks after it, or before it, up to `width` columns.
std::string PadRight(std::string text, std::size_t width);
std::string PadLeft(std::string text, std::size_t width);

/// `text` in lines that end within `width` columns; each but the first is `indent` columns in, and
/// the first is taken to begin there. Words that are wider stay whole.
std::string Folded(std::string_view text, std::size_t indent, std::size_t width);

/// `utf8` with other characters than ASCII as \uNNNN, or \UNNNNNNNN for those beyond 16 bits.
std::string ToAscii(std::string_view utf8);

}  // namespace vex2::lab
