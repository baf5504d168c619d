#pragma once

#include <string>
#include <vector>

#include "tools/vex/help/CommandTable.h"

namespace vex2::tool {

/// Joins the words with spaces.
std::string Joined(const std::vector<std::string>& words);
/// Joins all names of the options with spaces.
std::string JoinedNames(const std::vector<OptionText>& options);
/// The words that can follow a command, except options and paths: the subcommands of `command` or,
/// for 'vex help', the commands of `parent` and the topic "errors".
std::string WordsBehind(const CommandText& command, const CommandText& parent);

}  // namespace vex2::tool
