#include "lab/text/PlateGrid.h"

#include <algorithm>
#include <array>
#include <map>

#include "lab/text/Columns.h"

namespace vex2::lab {

namespace {

using Style = TextForm::Style;

constexpr std::array<Style, 6> kColours = {Style::kCyan,   Style::kGreen, Style::kMagenta,
                                           Style::kYellow, Style::kBlue,  Style::kRed};
constexpr std::size_t kLeastCell = 2;

// The letters for an index, from 0: a to z, then aa, ab and so on.
std::string letters(std::size_t index) {
  std::string text;
  for (++index; index > 0; index = (index - 1) / 26) {
    text.insert(text.begin(), static_cast<char>('a' + (index - 1) % 26));
  }
  return text;
}

// The different texts, in the order in which they first appear.
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
  name.pop_back();  // removes the column, which is 1
  return name;
}

// The meaning of the letters, with several entries on a line if there is room.
std::string legend(const Values& values, const TextForm& form) {
  std::vector<std::string> entries;
  std::size_t widest = 0;
  const std::size_t keyWidth = letters(values.Count() - 1).size();
  for (std::size_t place = 0; place < values.Count(); ++place) {
    const std::string count = " (" + std::to_string(values.Wells(place)) + ")";
    entries.push_back(values.Text(place) + count);
    widest = std::max(widest, keyWidth + 1 + Columns(entries.back()));
  }
  constexpr std::size_t kGap = 2;
  const std::size_t perLine = std::max<std::size_t>(1, (form.Width() + kGap) / (widest + kGap));
  const std::size_t lines = (entries.size() + perLine - 1) / perLine;
  std::string text;
  for (std::size_t line = 0; line < lines; ++line) {
    std::string row;
    for (std::size_t place = line; place < entries.size(); place += lines) {
      const bool isLast = place + lines >= entries.size();
      row += form.Styled(PadRight(letters(place), keyWidth), Values::ColourOf(place)) + ' ';
      row += isLast ? Folded(entries[place], keyWidth + 1, form.TextWidth())
                    : PadRight(entries[place], widest - keyWidth - 1 + kGap);
    }
    text += row + '\n';
  }
  return text;
}

/// How a plate is drawn: letters or texts in the cells, the width of a cell, and the number of
/// columns of the plate side by side.
struct Cells {
  bool usesLetters = false;
  std::size_t width = kLeastCell;
  unsigned columns = 0;
};

// The number of columns side by side: as many as fit, divided into groups of about the same size.
unsigned columnsPerGroup(unsigned columns, std::size_t room, std::size_t cell) {
  const std::size_t fitting = std::max<std::size_t>(1, room / (cell + 1));
  if (fitting >= columns) return columns;
  const std::size_t groups = (columns + fitting - 1) / fitting;
  return static_cast<unsigned>((columns + groups - 1) / groups);
}

Cells cellsOf(const PlateLayout& plate, const Values& values, std::size_t nameWidth,
              const TextForm& form) {
  // If the output has no fixed width, texts are shown as long as this many columns fit side by
  // side; otherwise letters.
  constexpr unsigned kLeastColumns = 4;
  Cells cells;
  const std::size_t width = form.PlateWidth();
  const std::size_t room = width - std::min(width, nameWidth);
  if (values.Count() > 0) cells.width = std::max(kLeastCell, values.Widest());
  cells.columns = columnsPerGroup(plate.columns, room, cells.width);
  const unsigned least = form.HasWidth() ? plate.columns : std::min(plate.columns, kLeastColumns);
  if (values.Count() == 0 || cells.columns >= least) return cells;
  const std::size_t letterCell = std::max(kLeastCell, letters(values.Count() - 1).size());
  if (letterCell >= cells.width) return cells;
  cells.usesLetters = true;
  cells.width = letterCell;
  cells.columns = columnsPerGroup(plate.columns, room, cells.width);
  return cells;
}

class Grid {
 public:
  Grid(const PlateLayout& plate, const std::vector<std::string>& texts, const TextForm& form)
      : plate_(plate),
        texts_(texts),
        form_(form),
        values_(texts),
        nameWidth_(plate.rows > 0 ? rowName(plate.rows - 1).size() : 0),
        cells_(cellsOf(plate, values_, nameWidth_, form)) {}

  std::string Draw() const {
    std::string drawn;
    for (unsigned first = 0; first < plate_.columns || first == 0; first += cells_.columns) {
      const unsigned end = std::min(first + cells_.columns, plate_.columns);
      drawn += (first > 0 ? "\n" : "") + group(first, end);
      if (cells_.columns == 0) break;
    }
    if (cells_.usesLetters) drawn += '\n' + legend(values_, form_);
    return drawn;
  }

 private:
  // The columns from `first` to below `end`, counted from 0.
  std::string group(unsigned first, unsigned end) const {
    std::string drawn = std::string(nameWidth_, ' ');
    for (unsigned column = first; column < end; ++column) {
      const std::string number = std::to_string(column + 1);
      drawn += ' ' + (column + 1 < end ? PadRight(number, cells_.width) : number);
    }
    drawn = form_.Styled(drawn, Style::kDim) + '\n';
    for (unsigned row = 0; row < plate_.rows; ++row) {
      drawn += form_.Styled(PadRight(rowName(row), nameWidth_), Style::kDim);
      for (unsigned column = first; column < end; ++column) {
        drawn += ' ' + cell(texts_.at(row * plate_.columns + column), column + 1 == end);
      }
      drawn += '\n';
    }
    return drawn;
  }

  std::string cell(const std::string& text, bool isLast) const {
    std::string shown = form_.IsAscii() ? "." : "·";
    Style style = Style::kDim;
    if (!text.empty()) {
      const std::size_t place = values_.PlaceOf(text);
      shown = cells_.usesLetters ? letters(place) : text;
      style = Values::ColourOf(place);
    }
    const std::size_t blanks = isLast ? 0 : cells_.width - std::min(cells_.width, Columns(shown));
    return form_.Styled(shown, style) + std::string(blanks, ' ');
  }

  const PlateLayout& plate_;
  const std::vector<std::string>& texts_;
  const TextForm& form_;
  Values values_;
  std::size_t nameWidth_;
  Cells cells_;
};

}  // namespace

std::string DrawPlate(const PlateLayout& plate, const std::vector<std::string>& texts,
                      const TextForm& form) {
  return Grid(plate, texts, form).Draw();
}

}  // namespace vex2::lab
