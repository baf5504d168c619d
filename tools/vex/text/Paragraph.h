#pragma once

#include <string>
#include <string_view>

namespace vex2::tool {

/// `text` for standard output, in lines that end within the terminal's width, or 80 columns where
/// there is none; each but the first is `indent` columns in. Words that are wider stay whole.
std::string Wrapped(std::string_view text, std::size_t indent);

}  // namespace vex2::tool
