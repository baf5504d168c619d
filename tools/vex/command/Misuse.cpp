#include "tools/vex/command/Misuse.h"

#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
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

// Finds "-json" first, because otherwise it would be reported as a wrong value of "-j".
std::optional<std::string> longOptionWithOneDash(const CLI::App& app,
                                                 std::span<const char* const> arguments) {
  const std::vector<std::string> names = optionNames(app);
  for (const std::string_view word : arguments) {
    if (word == "--") break;
    if (word.size() < 3 || word[0] != '-' || word[1] == '-') continue;
    const std::string name = "-" + std::string(word.substr(0, word.find('=')));
    if (std::find(names.begin(), names.end(), name) != names.end()) return std::string(word);
  }
  return std::nullopt;
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

Error MisuseOf(const CLI::App& app, const CLI::ParseError& error,
               std::span<const char* const> arguments) {
  const CLI::App& chosen = ChosenApp(app);
  const std::string call = ChosenCommand(app);
  const auto unknown = app.remaining(true);
  const auto isOption = [](const std::string& word) {
    return word.size() > 1 && word.front() == '-';
  };
  if (const auto word = longOptionWithOneDash(chosen, arguments)) {
    return unknownOption(chosen, call, *word);
  }
  // If there is an unknown word, a missing or surplus argument is most likely due to a misspelling,
  // so report the unknown word: as a command if one is required, otherwise as an option.
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
