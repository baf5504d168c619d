#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vex2::tool {

/// `text` in lines that end within `width` columns; each but the first is `indent` columns in, and
/// the first is taken to begin there. Words that are wider stay whole.
std::string Folded(std::string_view text, std::size_t indent, std::size_t width);

/// The same for standard output: in lines within its width, and in one where it has none to keep.
std::string Wrapped(std::string_view text, std::size_t indent);

}  // namespace vex2::tool
