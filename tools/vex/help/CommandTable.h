#pragma once

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}  // namespace CLI

namespace vex2::tool {

/// An option or an argument, as its command declared it.
struct OptionText {
  std::vector<std::string> names;    ///< "-o" and "--output"; of an argument, its one name
  std::string value;                 ///< placeholder for the value; empty for a flag
  std::string help;                  ///< one sentence
  std::string group;                 ///< heading under which the help lists it
  std::vector<std::string> choices;  ///< the values that it accepts; empty for any
  std::string range;                 ///< "1 to 64"; empty for any
  bool isRequired = false;           ///< the command fails without it
  bool takesSeveral = false;         ///< takes one value or more
  bool takesPath = false;            ///< its value is the path of a file
  bool TakesValue() const { return !value.empty(); }
};

/// A paragraph below the options of a command's help.
struct NoteText {
  struct Entry {
    std::string name;  ///< empty for a plain paragraph
    std::string text;
  };
  std::string heading;         ///< without its colon; empty for a paragraph without a heading
  std::vector<Entry> entries;  ///< of examples: each command line as a text
};

/// A command with everything that its help says. The man pages and the completions of shells are
/// made from these tables.
struct CommandText {
  std::string name;  ///< "new"
  std::string call;  ///< "vex study new"
  std::string summary;
  std::vector<OptionText> arguments;
  std::vector<OptionText> options;
  std::vector<NoteText> notes;
  std::vector<std::string> examples;
  std::vector<CommandText> commands;
};

/// The tables of `app`, which the user calls as `call`, and of all commands in it.
CommandText DescribeCommand(const CLI::App& app, const std::string& call);

}  // namespace vex2::tool
