#include "tools/vex/help/ManPage.h"

#include <algorithm>

#include "tools/vex/Errors.h"
#include "tools/vex/help/ManText.h"

namespace vex2::tool {

namespace {

// Escapes `text` so that a man page shows exactly its characters: the formatter takes none of them
// for a command, and quotes and hyphens can be copied into a shell.
std::string escaped(const std::string& text) {
  std::string result;
  if (text.starts_with('.') || text.starts_with('\'')) result = "\\&";
  for (const char character : text) {
    switch (character) {
      case '\\':
        result += "\\e";
        break;
      case '-':
        result += "\\-";
        break;
      case '\'':
        result += "\\(aq";
        break;
      case '`':
        result += "\\(ga";
        break;
      case '^':
        result += "\\(ha";
        break;
      case '~':
        result += "\\(ti";
        break;
      case '"':
        result += "\\(dq";
        break;
      default:
        result += character;
    }
  }
  return result;
}

std::string upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
  });
  return text;
}

std::string bold(const std::string& text) {
  return "\\fB" + escaped(text) + "\\fR";
}

std::string italic(const std::string& text) {
  return "\\fI" + escaped(text) + "\\fR";
}

// The line begins with a change of font, so the formatter cannot take its text for a command.
std::string entry(const std::string& term, const std::string& text) {
  return ".TP\n" + term + '\n' + escaped(text) + '\n';
}

std::string termOf(const OptionText& option) {
  if (!option.names.front().starts_with('-')) return italic(option.names.front());
  std::string term;
  for (const std::string& name : option.names) term += (term.empty() ? "" : ", ") + bold(name);
  if (option.TakesValue()) term += ' ' + italic(option.value);
  if (option.takesSeveral && !option.value.ends_with("...")) term += "...";
  return term;
}

std::string textOf(const OptionText& option) {
  std::string text = option.help;
  if (!option.range.empty()) text += " (" + option.range + ")";
  const auto isNamed = [&](const std::string& choice) {
    return option.help.find(choice) != std::string::npos;
  };
  if (!std::all_of(option.choices.begin(), option.choices.end(), isNamed)) {
    std::string list;
    for (const std::string& choice : option.choices) list += (list.empty() ? "" : ", ") + choice;
    text += " (" + list + ")";
  }
  if (option.isRequired && option.names.front().starts_with('-')) text += ". Required";
  return text + ".";
}

std::string synopsisOf(const CommandText& command) {
  std::string line = bold(command.call);
  for (const OptionText& option : command.options) {
    if (option.isRequired) line += ' ' + termOf(option);
  }
  line += command.options.empty() ? "" : " [" + italic("OPTION") + "]...";
  for (const OptionText& argument : command.arguments) {
    const std::string name = italic(argument.names.front()) + (argument.takesSeveral ? "..." : "");
    line += ' ' + (argument.isRequired ? name : '[' + name + ']');
  }
  if (!command.commands.empty()) line += ' ' + italic("COMMAND");
  return ".nh\n.ad l\n" + line + "\n.ad\n.hy\n";
}

std::string header(const std::string& name, const std::string& summary) {
  std::string plain = summary;
  if (plain.ends_with('.')) plain.pop_back();
  return ".TH " + upper(name) +
         " 1 \"\" \"vex2 " VEX2_VERSION "\" \"Plate documents\"\n.SH NAME\n" + escaped(name) +
         " \\- " + escaped(plain) + "\n.SH SYNOPSIS\n";
}

std::string paragraphs(const std::vector<std::string>& texts) {
  std::string result;
  for (const std::string& text : texts) result += ".PP\n" + escaped(text) + '\n';
  return result;
}

// Lists the options under their headings, in the order in which the headings first occur. `heading`
// formats one heading as a section.
template <typename Heading>
std::string optionLists(const CommandText& command, const Heading& heading) {
  std::string result;
  if (!command.arguments.empty()) result += heading("Arguments");
  for (const OptionText& argument : command.arguments) {
    result += entry(termOf(argument), textOf(argument));
  }
  std::vector<std::string> groups;
  for (const OptionText& option : command.options) {
    if (std::find(groups.begin(), groups.end(), option.group) == groups.end()) {
      groups.push_back(option.group);
    }
  }
  for (const std::string& group : groups) {
    result += heading(group);
    for (const OptionText& option : command.options) {
      if (option.group == group) result += entry(termOf(option), textOf(option));
    }
  }
  return result;
}

template <typename Heading>
std::string notes(const CommandText& command, const Heading& heading) {
  std::string result;
  for (const NoteText& note : command.notes) {
    result += note.heading.empty() ? heading("Notes") : heading(note.heading);
    for (const NoteText::Entry& line : note.entries) {
      result += line.name.empty() ? ".PP\n" + escaped(line.text) + '\n'
                                  : entry(bold(line.name), line.text);
    }
  }
  return result;
}

template <typename Heading>
std::string examples(const CommandText& command, const Heading& heading) {
  if (command.examples.empty()) return "";
  std::string result = heading("Examples");
  // The formatter may break long lines between words, but must not join an example with the next
  // one.
  for (const std::string& example : command.examples) {
    result += ".PP\n.nh\n.ad l\n" + escaped(example) + "\n.ad\n.hy\n";
  }
  return result;
}

std::string section(const std::string& heading) {
  return ".SH " + upper(escaped(heading)) + '\n';
}

// A section for a subcommand in the page of its command, with the lists of its options.
std::string innerCommand(const CommandText& command) {
  const auto heading = [](const std::string& name) { return ".PP\n" + bold(name + ":") + '\n'; };
  return ".SS " + escaped(command.call) + '\n' + synopsisOf(command) + ".PP\n" +
         escaped(command.summary) + '\n' + paragraphs(ManTextOf(command.call)) +
         optionLists(command, heading) + notes(command, heading) + examples(command, heading);
}

std::string exitCodes() {
  std::string result = section("Exit status");
  for (const auto& [code, meaning] : kExitCodes) {
    result += entry(bold(std::string(code)), std::string(meaning));
  }
  return result;
}

std::string errorCodes() {
  std::string result =
      section("Error codes") +
      "Each error is one line on standard error that names the file, and the "
      "offset where there is one. With\n.B \\-\\-json\nit is an object with one of "
      "the following codes (the exit status is in parentheses):\n";
  for (const ErrorKind& kind : ErrorKinds()) {
    result += entry(bold(std::string(kind.name)) + " (" +
                        std::to_string(static_cast<int>(ExitCodeOf(kind.errorClass))) + ")",
                    std::string(kind.meaning));
  }
  return result;
}

}  // namespace

std::string ManPageName(const CommandText& command) {
  std::string name = command.call;
  std::replace(name.begin(), name.end(), ' ', '-');
  return name;
}

std::string MainManPage(const CommandText& vex) {
  std::string page = header("vex", vex.summary) + synopsisOf(vex) + section("Description") +
                     paragraphs(ManTextOf(vex.call)) + section("Commands");
  for (const CommandText& command : vex.commands) {
    page += entry("\\fB" + escaped(ManPageName(command)) + "\\fR(1)", command.summary);
  }
  page += optionLists(vex, section) + exitCodes() + errorCodes() + section("Environment");
  for (const ManEntry& variable : kEnvironment) {
    page += entry(bold(std::string(variable.name)), std::string(variable.text));
  }
  page += section("Files");
  for (const ManEntry& file : kFiles) {
    page += entry(italic(std::string(file.name)), std::string(file.text));
  }
  return page + examples(vex, section);
}

std::string ManPageOf(const CommandText& command) {
  std::string page = header(ManPageName(command), command.summary) + synopsisOf(command);
  page += section("Description") + escaped(command.summary) + '\n' +
          paragraphs(ManTextOf(command.call)) + optionLists(command, section) +
          notes(command, section);
  if (!command.commands.empty()) page += section("Commands");
  for (const CommandText& inner : command.commands) page += innerCommand(inner);
  return page + examples(command, section) + section("See also") +
         ".BR vex (1)\ntells the exit status, the error codes, the environment and the files.\n";
}

}  // namespace vex2::tool
