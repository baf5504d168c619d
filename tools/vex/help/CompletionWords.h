#pragma once

#include <string>
#include <vector>

#include "tools/vex/help/CommandTable.h"

namespace vex2::tool {

/// The words with a space between them.
std::string Joined(const std::vector<std::string>& words);
/// All names of the options with a space between them.
std::string JoinedNames(const std::vector<OptionText>& options);
/// What can be typed behind a command that is neither an option nor a path: its own commands or,
/// for 'vex help', the commands of `parent` and the topic errors.
std::string WordsBehind(const CommandText& command, const CommandText& parent);

}  // namespace vex2::tool
