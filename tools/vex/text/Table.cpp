#include "tools/vex/text/Table.h"

#include <algorithm>

#include "tools/vex/text/Text.h"

namespace vex2::tool {

std::string DrawTable(const std::vector<std::string>& names,
                      const std::vector<std::vector<std::string>>& rows, const Terminal& terminal) {
  std::vector<std::size_t> widths(names.size(), 0);
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < names.size(); ++i) widths[i] = std::max(widths[i], Columns(row[i]));
  }
  const auto line = [&](const std::vector<std::string>& fields) {
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (widths[i] == 0) continue;
      text += PadRight(fields[i], std::max(widths[i], Columns(names[i]))) + "  ";
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return CutTo(text, terminal.TextWidth());
  };
  std::string table = terminal.Styled(line(names), Terminal::Style::kBold) + '\n';
  for (const auto& row : rows) table += line(row) + '\n';
  return table;
}

}  // namespace vex2::tool
