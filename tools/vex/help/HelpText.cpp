#include "tools/vex/help/HelpText.h"

#include <CLI/CLI.hpp>
#include <sstream>

#include "lab/text/Columns.h"
#include "tools/vex/Terminal.h"

namespace vex2::tool {

namespace {

// The index at which the explanation in the right column of a line begins. If there is none, the
// index of the first character that is not a space.
std::size_t explanationAt(const std::string& line) {
  const std::size_t begin = std::min(line.find_first_not_of(' '), line.size());
  const std::size_t gap = line.find("  ", begin);
  const std::size_t text = gap == std::string::npos ? gap : line.find_first_not_of(' ', gap);
  return text == std::string::npos ? begin : text;
}

std::string folded(const std::string& line, std::size_t width) {
  if (Columns(line) <= width) return line;
  constexpr std::size_t kLeastText = 16;
  constexpr std::size_t kIndent = 4;
  const std::size_t begin = std::min(line.find_first_not_of(' '), line.size());
  const std::size_t at = explanationAt(line);
  if (at + kLeastText <= width)
    return line.substr(0, at) + Terminal::Out().Wrapped(line.substr(at), at);
  const std::string indent(begin, ' ');
  if (at == begin) return indent + Terminal::Out().Wrapped(line.substr(begin), begin + kIndent);
  std::string name = line.substr(begin, at - begin);
  name.erase(name.find_last_not_of(' ') + 1);
  return indent + Terminal::Out().Wrapped(name, begin + kIndent) + '\n' +
         std::string(begin + kIndent, ' ') +
         Terminal::Out().Wrapped(line.substr(at), begin + kIndent);
}

}  // namespace

std::string HelpText(const CLI::App& app, const std::string& call) {
  const std::size_t width = Terminal::Out().TextWidth();
  // Do not use app.help(): it returns the help of the command that was typed, and for 'vex help'
  // that would be the help of the command `help`.
  std::istringstream lines(app.get_formatter()->make_help(&app, call, CLI::AppFormatMode::Normal));
  std::string text;
  for (std::string line; std::getline(lines, line);) text += folded(line, width) + '\n';
  return text;
}

}  // namespace vex2::tool
