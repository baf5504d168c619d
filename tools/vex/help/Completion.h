#pragma once

#include <string>

#include "tools/vex/help/CommandTable.h"

namespace vex2::tool {

/// The completion of `vex` for the shell bash: commands, options, and values of options.
std::string BashCompletion(const CommandText& vex);
/// The completion of `vex` for the shell zsh: commands, options, and values of options.
std::string ZshCompletion(const CommandText& vex);
/// The completion of `vex` for the shell fish: commands, options, and values of options.
std::string FishCompletion(const CommandText& vex);

}  // namespace vex2::tool
