#include "tools/vex/setup/PlateGrid.h"

#include <algorithm>
#include <array>
#include <map>

#include "tools/vex/text/Text.h"

namespace vex2::tool {

namespace {

using Style = Terminal::Style;

constexpr std::array<Style, 6> kColours = {Style::kCyan,   Style::kGreen, Style::kMagenta,
                                           Style::kYellow, Style::kBlue,  Style::kRed};
constexpr const char* kNothing = "·";
constexpr std::size_t kLeastCell = 2;

// a to z, then aa, ab and so on.
std::string letters(std::size_t index) {
  std::string text;
  for (++index; index > 0; index = (index - 1) / 26) {
    text.insert(text.begin(), static_cast<char>('a' + (index - 1) % 26));
  }
  return text;
}

// The different texts in the order in which they first appear.
class Values {
 public:
  explicit Values(const std::vector<std::string>& texts) {
    for (const std::string& text : texts) {
      if (text.empty()) continue;
      if (places_.emplace(text, texts_.size()).second) {
        texts_.push_back(text);
        counts_.push_back(0);
      }
      ++counts_[places_.at(text)];
    }
  }

  std::size_t Count() const { return texts_.size(); }
  std::size_t PlaceOf(const std::string& text) const { return places_.at(text); }
  const std::string& Text(std::size_t place) const { return texts_[place]; }
  std::size_t Wells(std::size_t place) const { return counts_[place]; }
  static Style ColourOf(std::size_t place) { return kColours[place % kColours.size()]; }
  std::size_t Widest() const {
    std::size_t widest = 0;
    for (const std::string& text : texts_) widest = std::max(widest, Columns(text));
    return widest;
  }

 private:
  std::map<std::string, std::size_t> places_;
  std::vector<std::string> texts_;
  std::vector<std::size_t> counts_;
};

std::string rowName(unsigned row) {
  std::string name = WellName(row + 1, 1);
  name.pop_back();  // the column, which is 1
  return name;
}

// What the letters stand for, side by side as far as the terminal is wide.
std::string legend(const Values& values, const Terminal& terminal) {
  std::vector<std::string> entries;
  std::size_t widest = 0;
  const std::size_t keyWidth = letters(values.Count() - 1).size();
  for (std::size_t place = 0; place < values.Count(); ++place) {
    const std::string count = " (" + std::to_string(values.Wells(place)) + ")";
    const std::size_t room = terminal.Width() - keyWidth - 1 - count.size();
    entries.push_back(CutTo(values.Text(place), room) + count);
    widest = std::max(widest, keyWidth + 1 + Columns(entries.back()));
  }
  constexpr std::size_t kGap = 2;
  const std::size_t perLine = std::max<std::size_t>(1, (terminal.Width() + kGap) / (widest + kGap));
  const std::size_t lines = (entries.size() + perLine - 1) / perLine;
  std::string text;
  for (std::size_t line = 0; line < lines; ++line) {
    std::string row;
    for (std::size_t place = line; place < entries.size(); place += lines) {
      const bool isLast = place + lines >= entries.size();
      row += terminal.Styled(PadRight(letters(place), keyWidth), Values::ColourOf(place)) + ' ';
      row += isLast ? entries[place] : PadRight(entries[place], widest - keyWidth - 1 + kGap);
    }
    text += row + '\n';
  }
  return text;
}

}  // namespace

std::string DrawPlate(const PlateLayout& plate, const std::vector<std::string>& texts,
                      const Terminal& terminal) {
  const Values values(texts);
  const std::size_t nameWidth = plate.rows > 0 ? rowName(plate.rows - 1).size() : 0;
  const std::size_t width = terminal.TextWidth();
  const std::size_t share = (width - std::min(width, nameWidth)) / std::max(plate.columns, 1U);
  const std::size_t room = std::max<std::size_t>(share, 1) - 1;  // but for a blank
  const bool usesLetters = values.Widest() > room;
  std::size_t cell = kLeastCell;
  if (values.Count() > 0) {
    cell = std::max(cell, usesLetters ? letters(values.Count() - 1).size() : values.Widest());
  }
  std::string drawn = std::string(nameWidth, ' ');
  for (unsigned column = 1; column <= plate.columns; ++column) {
    const std::string number = std::to_string(column);
    drawn += ' ' + (column < plate.columns ? PadRight(number, cell) : number);
  }
  drawn = terminal.Styled(drawn, Style::kDim) + '\n';
  for (unsigned row = 0; row < plate.rows; ++row) {
    drawn += terminal.Styled(PadRight(rowName(row), nameWidth), Style::kDim);
    for (unsigned column = 0; column < plate.columns; ++column) {
      const std::string& text = texts.at(row * plate.columns + column);
      const bool isLast = column + 1 == plate.columns;
      std::string shown = kNothing;
      Style style = Style::kDim;
      if (!text.empty()) {
        const std::size_t place = values.PlaceOf(text);
        shown = usesLetters ? letters(place) : text;
        style = Values::ColourOf(place);
      }
      const std::size_t used = Columns(shown);
      drawn += ' ' + terminal.Styled(shown, style);
      if (!isLast) drawn += std::string(cell - std::min(cell, used), ' ');
    }
    drawn += '\n';
  }
  if (usesLetters && values.Count() > 0) drawn += '\n' + legend(values, terminal);
  return drawn;
}

}  // namespace vex2::tool
