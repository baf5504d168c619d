#pragma once

#include <memory>

#include "tools/vex/command/Command.h"

namespace vex2::tool {

/// Draws a run in the terminal, or as a picture.
std::unique_ptr<Command> MakePlotCommand();

}  // namespace vex2::tool
