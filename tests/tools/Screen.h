#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/tools/VexProcess.h"

namespace vex2::test {

/// Where a command prints to: what the environment says, and how wide the terminal is.
struct Screen {
  std::map<std::string, std::string> environment;
  unsigned short columns = 0;  ///< of a terminal; 0 for a file
};

/// Runs the command on such a screen. On a terminal standard error is in the output, and its line
/// ends are those of a file.
CommandResult RunVexOn(const Screen& screen, const VexProcess::Arguments& arguments);

/// The lines of a text.
std::vector<std::string> LinesOf(const std::string& text);

}  // namespace vex2::test
