#pragma once

#include <string>

namespace CLI {
class App;
}  // namespace CLI

namespace vex2::tool {

/// The help of the command that the user types as `call`, wrapped at the width of the terminal.
std::string HelpText(const CLI::App& app, const std::string& call);

}  // namespace vex2::tool
