#include "lab/picture/CellCanvas.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vex2::lab {

namespace {

// The bits of the dots in a Braille cell of two columns and four lines: Unicode, chapter 21.2.
constexpr std::array<std::array<std::uint8_t, 2>, 4> kDots = {
    {{0x01, 0x08}, {0x02, 0x10}, {0x04, 0x20}, {0x40, 0x80}}};

std::string brailleOf(std::uint8_t dots) {
  // The characters from U+2800 on, in UTF-8.
  return {'\xe2', static_cast<char>(0xa0U | dots >> 6U), static_cast<char>(0x80U | (dots & 0x3fU))};
}

bool isSame(const Look& one, const Look& other) {
  return one.group == other.group && one.share == other.share;
}

}  // namespace

char LetterOf(const Look& look) {
  constexpr std::size_t kAlphabet = 26;
  static_assert(kMostLetters == 2 * kAlphabet);
  if (look.share)
    return static_cast<char>('0' + std::lround(std::clamp(*look.share, 0.0, 1.0) * 9));
  if (!look.group || *look.group >= kMostLetters) return '*';
  const auto place = static_cast<char>(*look.group % kAlphabet);
  return static_cast<char>((*look.group < kAlphabet ? 'a' : 'A') + place);
}

void CellCanvas::dot(double x, double y, const Look& look) {
  if (!(x >= 0 && x <= 1 && y >= 0 && y <= 1)) return;
  const auto column =
      std::min(static_cast<std::size_t>(x * static_cast<double>(2 * columns_)), 2 * columns_ - 1);
  const auto line =
      std::min(static_cast<std::size_t>((1 - y) * static_cast<double>(4 * lines_)), 4 * lines_ - 1);
  Cell& cell = cells_[line / 4 * columns_ + column / 2];
  cell.dots |= kDots[line % 4][column % 2];
  cell.look = look;
}

void CellCanvas::Line(double x1, double y1, double x2, double y2, const Look& look) {
  const double across = std::abs(x2 - x1) * static_cast<double>(2 * columns_);
  const double down = std::abs(y2 - y1) * static_cast<double>(4 * lines_);
  // Take twice as many steps as dots, so that no dot is left out.
  const double longest = std::min(std::max(across, down), 1e5);
  const int steps = std::max(1, static_cast<int>(longest * 2));
  for (int i = 0; i <= steps; ++i) {
    const double share = static_cast<double>(i) / steps;
    dot(x1 + (x2 - x1) * share, y1 + (y2 - y1) * share, look);
  }
}

void CellCanvas::Rule(double y) {
  if (!(y >= 0 && y <= 1)) return;
  const auto line =
      std::min(static_cast<std::size_t>((1 - y) * static_cast<double>(lines_)), lines_ - 1);
  for (std::size_t column = 0; column < columns_; ++column) {
    cells_[line * columns_ + column].isRule = true;
  }
}

std::string CellCanvas::textOf(const Cell& cell) const {
  if (cell.dots != 0)
    return hasLetters_ ? std::string(1, LetterOf(cell.look)) : brailleOf(cell.dots);
  if (cell.isRule) return isAscii_ ? "-" : "╌";
  return " ";
}

std::vector<CellRun> CellCanvas::LineAt(std::size_t line) const {
  std::vector<CellRun> runs;
  for (std::size_t column = 0; column < columns_; ++column) {
    const Cell& cell = cells_[line * columns_ + column];
    const bool isSoft = cell.dots == 0;
    if (runs.empty() || runs.back().isSoft != isSoft ||
        (!isSoft && !isSame(runs.back().look, cell.look))) {
      runs.push_back({"", isSoft ? Look() : cell.look, isSoft});
    }
    runs.back().text += textOf(cell);
  }
  return runs;
}

}  // namespace vex2::lab
