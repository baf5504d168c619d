#pragma once

#include <memory>

#include "tools/vex/command/Command.h"

namespace vex2::tool {

/// Makes the command that draws a run in the terminal or as a picture.
std::unique_ptr<Command> MakePlotCommand();

}  // namespace vex2::tool
