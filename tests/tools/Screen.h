#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/tools/VexProcess.h"

namespace vex2::test {

/// The environment variables and the width of the terminal on which a command runs.
struct Screen {
  std::map<std::string, std::string> environment;
  unsigned short columns = 0;  ///< the width of the terminal; 0 for output to a file
};

/// Runs the command on this screen. On a terminal, the output includes standard error, and its line
/// ends are converted to "\n".
CommandResult RunVexOn(const Screen& screen, const VexProcess::Arguments& arguments);

/// The lines of a text.
std::vector<std::string> LinesOf(const std::string& text);

}  // namespace vex2::test
