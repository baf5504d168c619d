#pragma once

#include <string>

namespace CLI {
class App;
}  // namespace CLI

namespace vex2::tool {

/// The help of a command, which is typed as `call`, folded at the width of the screen.
std::string HelpText(const CLI::App& app, const std::string& call);

}  // namespace vex2::tool
