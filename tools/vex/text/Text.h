#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "lab/Text.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

/// `utf8` with other characters than ASCII as \uNNNN, or \UNNNNNNNN for those beyond 16 bits.
std::string ToAscii(std::string_view utf8);
/// What stands for text that was left out.
std::string_view Ellipsis();

/// A text of a document as a person sees it: in quotes, on one line, and without anything that a
/// terminal would obey. Cut to `width` columns, with "…" at the end then.
std::string Shown(std::string_view latin1, std::size_t width);

/// The columns that UTF-8 without control characters takes on a terminal; wide characters are
/// counted as one, since there are none in Latin-1.
std::size_t Columns(std::string_view utf8);
/// `utf8` cut to `width` columns, with "…" at the end then.
std::string CutTo(std::string_view utf8, std::size_t width);

std::string PadRight(std::string text, std::size_t width);
std::string PadLeft(std::string text, std::size_t width);

}  // namespace vex2::tool
