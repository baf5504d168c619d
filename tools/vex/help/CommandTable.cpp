#include "tools/vex/help/CommandTable.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

namespace vex2::tool {

namespace {

// Translates the names that the command-line library uses for numbers and texts.
std::string readableValue(const std::string& type) {
  if (type == "UINT" || type == "INT") return "N";
  return type == "FLOAT" ? "X" : type;
}

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
  return parts;
}

// A check describes itself as "{auto,always}" or "UINT in [1 - 64]".
void addCheck(OptionText& option, const std::string& check) {
  const std::size_t open = check.find_first_of("{[");
  const std::size_t close = check.find_last_of("}]");
  if (open == std::string::npos || close == std::string::npos) return;
  const std::string inside = check.substr(open + 1, close - open - 1);
  if (check[open] == '{') {
    option.choices = split(inside, ',');
  } else if (const std::size_t dash = inside.find(" - "); dash != std::string::npos) {
    option.range = inside.substr(0, dash) + " to " + inside.substr(dash + 3);
  }
}

// The placeholders that stand for paths in all commands.
bool isPath(const std::string& placeholder) {
  static const std::vector<std::string> kPaths = {"FILE",     "IN",    "OUT",   "OUT.csv",
                                                  "FILE.csv", "STUDY", "PLATE", "FILE.vex"};
  return std::find(kPaths.begin(), kPaths.end(), placeholder) != kPaths.end();
}

OptionText describeOption(const CLI::Option& option) {
  OptionText text;
  if (option.get_positional()) {
    text.names = {option.get_name()};
  } else {
    for (const std::string& name : option.get_snames()) text.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) text.names.push_back("--" + name);
  }
  const std::string type = option.get_type_name();
  const std::size_t colon = type.find(':');
  if (option.get_items_expected_max() > 0) text.value = readableValue(type.substr(0, colon));
  if (colon != std::string::npos) addCheck(text, type.substr(colon + 1));
  // "comma|semicolon" already lists the choices.
  if (text.value.find('|') != std::string::npos) text.value = "VALUE";
  if (option.get_positional() && !isPath(text.value)) text.value = text.names.front();
  text.help = option.get_description();
  text.group = option.get_group();
  text.isRequired = option.get_required();
  text.takesSeveral = option.get_items_expected_max() > 1;
  text.takesPath = isPath(text.value);
  return text;
}

std::size_t indentOf(const std::string& line) {
  return std::min(line.find_first_not_of(' '), line.size());
}

// Adds a line of a note: "  NAME  text" begins an entry, a line that is indented more continues it,
// and any other line belongs to a plain paragraph.
void addLine(NoteText& note, const std::string& line, bool continues) {
  constexpr std::size_t kIndent = 2;
  const std::size_t begin = indentOf(line);
  const std::string text = line.substr(begin);
  const std::size_t gap = text.find("  ");
  if (begin > kIndent && !note.entries.empty()) {
    note.entries.back().text += " " + text;
  } else if (gap != std::string::npos) {
    note.entries.push_back({text.substr(0, gap), text.substr(text.find_first_not_of(' ', gap))});
  } else if (continues && !note.entries.empty() && note.entries.back().name.empty()) {
    note.entries.back().text += " " + text;
  } else {
    note.entries.push_back({"", text});
  }
}

void addNotes(CommandText& command, const std::string& footer) {
  bool isExample = false;
  bool continues = false;  // the line above belongs to the same paragraph
  for (const std::string& line : split(footer, '\n')) {
    if (line.empty()) {
      continues = false;
    } else if (line.front() != ' ' && line.back() == ':') {
      isExample = line.starts_with("Example");
      if (!isExample) command.notes.push_back({line.substr(0, line.size() - 1), {}});
    } else if (isExample && line.front() == ' ') {
      command.examples.push_back(line.substr(indentOf(line)));
    } else {
      const bool isUnindented = line.front() != ' ';
      if (command.notes.empty() || (isUnindented && !continues)) command.notes.push_back({});
      addLine(command.notes.back(), line, continues);
      continues = true;
    }
  }
}

}  // namespace

CommandText DescribeCommand(const CLI::App& app, const std::string& call) {
  CommandText command;
  command.name = app.get_name();
  command.call = call;
  command.summary = app.get_description();
  for (const CLI::Option* option : app.get_options(nullptr)) {
    if (option->get_group().empty()) continue;  // hidden
    (option->get_positional() ? command.arguments : command.options)
        .push_back(describeOption(*option));
  }
  addNotes(command, app.get_footer());
  for (const CLI::App* part : app.get_subcommands(nullptr)) {
    command.commands.push_back(DescribeCommand(*part, call + " " + part->get_name()));
  }
  return command;
}

}  // namespace vex2::tool
