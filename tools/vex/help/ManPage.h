#pragma once

#include <string>

#include "tools/vex/help/CommandTable.h"

namespace vex2::tool {

/// The man page vex(1), with all commands, the errors and the files.
std::string MainManPage(const CommandText& vex);

/// The man page of one command, such as vex-study(1). It includes the subcommands.
std::string ManPageOf(const CommandText& command);

/// The name of the page of a command, such as "vex-study".
std::string ManPageName(const CommandText& command);

}  // namespace vex2::tool
