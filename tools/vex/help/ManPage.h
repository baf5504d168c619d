#pragma once

#include <string>

#include "tools/vex/help/CommandTable.h"

namespace vex2::tool {

/// The man page vex(1), with all commands, the errors and the files.
std::string MainManPage(const CommandText& vex);

/// The man page of one command of vex, as vex-study(1). It contains the commands of its own.
std::string ManPageOf(const CommandText& command);

/// The name of a command's page: "vex-study".
std::string ManPageName(const CommandText& command);

}  // namespace vex2::tool
