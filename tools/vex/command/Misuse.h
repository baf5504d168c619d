#pragma once

#include <span>

#include "tools/vex/Errors.h"

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace vex2::tool {

/// What to tell the user when `arguments`, the command line of `app`, could not be parsed: the word
/// that is not known with the name that was most likely meant, or what is missing, surplus or no
/// value.
Error MisuseOf(const CLI::App& app, const CLI::ParseError& error,
               std::span<const char* const> arguments);

/// The innermost command that was typed, `app` itself when there is none.
const CLI::App& ChosenApp(const CLI::App& app);
/// The command that was typed, as far as it is known: "vex study new".
std::string ChosenCommand(const CLI::App& app);

/// The error for a name that is none of the commands of `app`, which is typed as `call`.
Error UnknownCommand(const CLI::App& app, const std::string& call, const std::string& name);

}  // namespace vex2::tool
