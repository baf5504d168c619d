#include "tools/vex/help/Completion.h"
#include "tools/vex/help/CompletionWords.h"

namespace vex2::tool {

namespace {

std::string quoted(const std::string& text) {
  std::string result = "'";
  for (const char character : text) {
    if (character == '\'' || character == '\\') result += '\\';
    result += character;
  }
  return result + "'";
}

// Prints the command that was typed so far: "vex study new".
std::string callFunction(const CommandText& vex) {
  std::string text =
      "# Completion of vex for fish. Made from the options of the command.\n\n"
      "function __vex_call\n    set -l call vex\n"
      "    for word in (commandline -opc)[2..-1]\n        switch \"$call $word\"\n            case";
  for (const CommandText& command : vex.commands) {
    text += " '" + command.call + "'";
    for (const CommandText& inner : command.commands) text += " '" + inner.call + "'";
  }
  return text +
         "\n                set call \"$call $word\"\n        end\n    end\n"
         "    echo $call\nend\n\n"
         "function __vex_is\n    test (__vex_call) = \"$argv\"\nend\n\n"
         "complete -c vex -f\n";
}

std::string optionLine(const std::string& start, const OptionText& option) {
  std::string line = start;
  for (const std::string& name : option.names) {
    line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
  }
  if (option.takesPath) {
    line += " -r -F";
  } else if (option.TakesValue()) {
    line += " -x";
    if (!option.choices.empty()) line += " -a " + quoted(Joined(option.choices));
  }
  return line + " -d " + quoted(option.help) + '\n';
}

std::string lines(const CommandText& command, const CommandText& parent) {
  const std::string start = "complete -c vex -n " + quoted("__vex_is " + command.call);
  std::string text;
  for (const OptionText& option : command.options) text += optionLine(start, option);
  for (const CommandText& inner : command.commands) {
    text += start + " -a " + inner.name + " -d " + quoted(inner.summary) + '\n';
  }
  const std::string words = WordsBehind(command, parent);
  if (words.empty()) {
    text += start + " -F\n";
  } else if (command.commands.empty()) {
    text += start + " -a " + quoted(words) + '\n';
  }
  for (const CommandText& inner : command.commands) text += lines(inner, command);
  return text;
}

}  // namespace

std::string FishCompletion(const CommandText& vex) {
  return callFunction(vex) + lines(vex, vex);
}

}  // namespace vex2::tool
