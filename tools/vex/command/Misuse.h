#pragma once

#include <span>

#include "tools/vex/Errors.h"

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace vex2::tool {

/// The error for `arguments`, a command line of `app` that could not be parsed. It names an unknown
/// word and the name that was most likely meant; or what is missing, surplus or not a valid value.
Error MisuseOf(const CLI::App& app, const CLI::ParseError& error,
               std::span<const char* const> arguments);

/// The innermost command that was typed, or `app` itself if there is none.
const CLI::App& ChosenApp(const CLI::App& app);
/// The command that was typed, as far as it is known: "vex study new".
std::string ChosenCommand(const CLI::App& app);

/// The error for a `name` that is not a command of `app`. The user types `app` as `call`.
Error UnknownCommand(const CLI::App& app, const std::string& call, const std::string& name);

}  // namespace vex2::tool
