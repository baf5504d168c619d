#pragma once

#include <string>
#include <string_view>

#include "lab/model/Codes.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

/// "AbsQ: absolute quantification", safe for a terminal; the code alone when its meaning is not
/// known.
std::string ExplainedCode(CodeField field, std::string_view code);

}  // namespace vex2::tool
