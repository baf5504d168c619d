#pragma once

#include "lab/text/Columns.h"
#include "tools/vex/text/Terminal.h"

namespace vex2::tool {

inline std::string Wrapped(std::string_view text, std::size_t indent) {
  return Terminal::Out().Wrapped(text, indent);
}

}  // namespace vex2::tool
