#include "tools/vex/help/Completion.h"
#include "tools/vex/help/CompletionWords.h"

namespace vex2::tool {

namespace {

// Puts the text in single quotes, with a backslash before each of the `special` characters.
std::string quoted(const std::string& text, const std::string& special) {
  std::string result;
  for (const char character : text) {
    if (character == '\'') {
      result += "'\\''";
      continue;
    }
    if (special.find(character) != std::string::npos) result += '\\';
    result += character;
  }
  return result;
}

std::string action(const OptionText& option) {
  if (option.takesPath) return "_files";
  return option.choices.empty() ? " " : "(" + Joined(option.choices) + ")";
}

// "'(-o --output)'{-o,--output}'[Write it here]:OUT:_files'"
std::string optionSpec(const OptionText& option) {
  std::string names = option.names.front();
  std::string spec = "'";
  if (option.names.size() > 1) {
    names.clear();
    for (const std::string& name : option.names) names += (names.empty() ? "{" : ",") + name;
    spec = "'(" + Joined(option.names) + ")'" + names + "}'";
  } else {
    spec += names;
  }
  spec += "[" + quoted(option.help, "[]\\") + "]";
  if (option.TakesValue()) spec += ":" + quoted(option.value, ":\\") + ":" + action(option);
  return spec + "'";
}

std::string functionOf(const CommandText& command) {
  std::string name = "_" + command.call;
  for (char& character : name) character = character == ' ' ? '_' : character;
  return name;
}

// Offers the subcommands of `command`. After one of them was typed, its own function completes the
// rest of the line.
std::string choice(const CommandText& command) {
  std::string text =
      "    '1: :->command' '*:: :->rest' && return\n  case $state in\n    command)\n"
      "      commands=(\n";
  for (const CommandText& inner : command.commands) {
    text += "        '" + quoted(inner.name + ":", "\\") + quoted(inner.summary, ":\\") + "'\n";
  }
  text += "      )\n      _describe command commands ;;\n    rest)\n      case $words[1] in\n";
  for (const CommandText& inner : command.commands) {
    text += "        " + inner.name + ") " + functionOf(inner) + " ;;\n";
  }
  return text + "      esac ;;\n  esac\n";
}

std::string function(const CommandText& command, const CommandText& parent) {
  std::string text =
      functionOf(command) +
      "() {\n  local curcontext=$curcontext state line commands\n  _arguments -s -C \\\n";
  for (const OptionText& option : command.options) text += "    " + optionSpec(option) + " \\\n";
  if (!command.commands.empty()) {
    text += choice(command);
  } else {
    const std::string words = WordsBehind(command, parent);
    text += words.empty() ? "    '*:file:_files'\n" : "    '*:command:(" + words + ")'\n";
  }
  text += "}\n\n";
  for (const CommandText& inner : command.commands) text += function(inner, command);
  return text;
}

}  // namespace

std::string ZshCompletion(const CommandText& vex) {
  return "#compdef vex\n# Completion of vex for zsh. Made from the options of the command.\n\n" +
         function(vex, vex) + "_vex \"$@\"\n";
}

}  // namespace vex2::tool
