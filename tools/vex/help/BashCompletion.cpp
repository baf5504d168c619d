#include "tools/vex/help/Completion.h"
#include "tools/vex/help/CompletionWords.h"

namespace vex2::tool {

namespace {

// Finds the command that was typed so far, skipping options and their values, and offers the words
// in the table of that command. Needs only bash itself.
constexpr const char* kHead = R"(# Completion of vex for bash. Made from the options of the command.

_vex() {
  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}
  local call=vex word i commands options values
  # Readline splits --option=value into three words.
  if [[ $cur == = ]]; then
    cur=
  elif [[ $prev == = ]]; then
    prev=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    _vex_table "$call" ""
    [[ " $commands " == *" $word "* ]] && call+=" $word"
  done
  _vex_table "$call" "$prev"
  COMPREPLY=()
  if [[ $values == "<path>" ]]; then
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$cur")
  elif [[ -n $values ]]; then
    [[ $values == "<any>" ]] || mapfile -t COMPREPLY < <(compgen -W "$values" -- "$cur")
  elif [[ $cur == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
  elif [[ -n $commands ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$cur")
  else
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$cur")
  fi
}

# Sets commands, options and, if the option $2 takes a value, values for the command line $1.
_vex_table() {
  commands= options= values=
  case $1 in
)";

constexpr const char* kTail = R"(  esac
}

complete -F _vex vex
)";

std::string table(const CommandText& command, const std::string& commands) {
  std::string text = "    \"" + command.call + "\")\n";
  if (!commands.empty()) text += "      commands=\"" + commands + "\"\n";
  text += "      options=\"" + JoinedNames(command.options) + "\"\n      case $2 in\n";
  for (const OptionText& option : command.options) {
    if (!option.TakesValue()) continue;
    std::string names;
    for (const std::string& name : option.names) names += (names.empty() ? "" : " | ") + name;
    const std::string values = Joined(option.choices);
    text += "        " + names + ") values=\"" +
            (option.takesPath ? "<path>"
             : values.empty() ? "<any>"
                              : values) +
            "\" ;;\n";
  }
  return text + "      esac\n      ;;\n";
}

std::string tables(const CommandText& command, const std::string& words) {
  std::string text = table(command, words);
  for (const CommandText& inner : command.commands)
    text += tables(inner, WordsBehind(inner, command));
  return text;
}

}  // namespace

std::string BashCompletion(const CommandText& vex) {
  return kHead + tables(vex, WordsBehind(vex, vex)) + kTail;
}

}  // namespace vex2::tool
