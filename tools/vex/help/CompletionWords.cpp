#include "tools/vex/help/CompletionWords.h"

namespace vex2::tool {

std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

std::string JoinedNames(const std::vector<OptionText>& options) {
  std::vector<std::string> names;
  for (const OptionText& option : options) {
    names.insert(names.end(), option.names.begin(), option.names.end());
  }
  return Joined(names);
}

std::string WordsBehind(const CommandText& command, const CommandText& parent) {
  const bool isHelp = !command.arguments.empty() && command.arguments.front().names[0] == "COMMAND";
  std::vector<std::string> words;
  for (const CommandText& inner : isHelp ? parent.commands : command.commands) {
    words.push_back(inner.name);
  }
  if (isHelp) words.emplace_back("errors");
  return Joined(words);
}

}  // namespace vex2::tool
