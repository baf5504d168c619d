#include "tools/vex/text/Paragraph.h"

#include <algorithm>

#include "tools/vex/text/Terminal.h"
#include "tools/vex/text/Text.h"

namespace vex2::tool {

std::string Folded(std::string_view text, std::size_t indent, std::size_t width) {
  std::string result;
  std::size_t column = indent;
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(text.size(), word.size() + 1));
    if (column > indent && column + 1 + Columns(word) > width) {
      result.erase(result.find_last_not_of(' ') + 1);
      result += '\n' + std::string(indent, ' ');
      column = indent;
    } else if (column > indent) {
      result += ' ';
      ++column;
    }
    result += word;
    column += Columns(word);
  }
  return result;
}

std::string Wrapped(std::string_view text, std::size_t indent) {
  const Terminal& terminal = Terminal::Out();
  if (!terminal.HasWidth()) return std::string(text);
  // Longer lines are no easier to read, whatever the window.
  constexpr std::size_t kWidest = 100;
  return Folded(text, indent, std::min(terminal.TextWidth(), kWidest));
}

}  // namespace vex2::tool
