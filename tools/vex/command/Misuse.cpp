#include "tools/vex/command/Misuse.h"

#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>
#include <vector>

#include "lab/Nearest.h"

namespace vex2::tool {

namespace {

std::string oneLine(std::string text) {
  for (char& character : text) {
    if (character == '\n') character = ' ';
  }
  return text;
}

std::vector<std::string> commandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* part : app.get_subcommands(nullptr)) names.push_back(part->get_name());
  return names;
}

std::vector<std::string> optionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

std::string seeHelp(const std::string& call) {
  return fmt::format("; see '{} --help'", call);
}

Error unknownOption(const CLI::App& app, const std::string& call, const std::string& word) {
  const std::string name = word.substr(0, word.find('='));
  const std::string hint = DidYouMean(name, optionNames(app));
  return {ErrorCode::kUnknownOption,
          fmt::format("unknown option '{}'{}", name, hint.empty() ? seeHelp(call) : hint)};
}

ErrorCode codeOf(const CLI::ParseError& error) {
  switch (static_cast<CLI::ExitCodes>(error.get_exit_code())) {
    case CLI::ExitCodes::RequiredError:
    case CLI::ExitCodes::ArgumentMismatch:
      return ErrorCode::kMissingArgument;
    case CLI::ExitCodes::ConversionError:
    case CLI::ExitCodes::ValidationError:
    case CLI::ExitCodes::InvalidError:
      return ErrorCode::kInvalidValue;
    case CLI::ExitCodes::ExcludesError:
    case CLI::ExitCodes::RequiresError:
      return ErrorCode::kConflictingOptions;
    default:
      return ErrorCode::kUsage;
  }
}

}  // namespace

const CLI::App& ChosenApp(const CLI::App& app) {
  const auto parts = app.get_subcommands();
  return parts.empty() ? app : ChosenApp(*parts.front());
}

std::string ChosenCommand(const CLI::App& app) {
  const auto parts = app.get_subcommands();
  return parts.empty() ? app.get_name() : app.get_name() + " " + ChosenCommand(*parts.front());
}

Error UnknownCommand(const CLI::App& app, const std::string& call, const std::string& name) {
  const std::string hint = DidYouMean(name, commandNames(app));
  return {ErrorCode::kUnknownCommand,
          fmt::format("unknown command '{}'{}", name, hint.empty() ? seeHelp(call) : hint)};
}

Error MisuseOf(const CLI::App& app, const CLI::ParseError& error) {
  const CLI::App& chosen = ChosenApp(app);
  const std::string call = ChosenCommand(app);
  const auto unknown = app.remaining(true);
  const auto isOption = [](const std::string& word) {
    return word.size() > 1 && word.front() == '-';
  };
  // What is missing or surplus then is most likely what was misspelt: without a command, that.
  const bool wantsCommand = chosen.get_require_subcommand_min() > 0;
  const auto name = std::find_if_not(unknown.begin(), unknown.end(), isOption);
  if (wantsCommand && name != unknown.end()) return UnknownCommand(chosen, call, *name);
  const auto option = std::find_if(unknown.begin(), unknown.end(), isOption);
  if (option != unknown.end()) return unknownOption(chosen, call, *option);
  if (!unknown.empty()) {
    return {ErrorCode::kSurplusArgument,
            fmt::format("'{}' is an argument too many{}", unknown.front(), seeHelp(call))};
  }
  if (wantsCommand) {
    return {ErrorCode::kMissingArgument, fmt::format("a command is missing{}", seeHelp(call))};
  }
  return {codeOf(error), oneLine(error.what()) + seeHelp(call)};
}

}  // namespace vex2::tool
