#include "lab/text/Chart.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "lab/text/Columns.h"

namespace vex2::lab {

namespace {

// The blocks, from empty to full.
constexpr std::array<const char*, 9> kBlocks = {" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
constexpr std::array<const char*, 9> kAsciiBlocks = {" ", "_", ".", "-", ":", "=", "+", "*", "#"};
constexpr int kSteps = 8;  // a full block has this many steps
constexpr std::size_t kWidestBar = 4;

struct Range {
  double least = 0;
  double most = 0;
};

Range rangeOf(const std::vector<double>& values) {
  Range range;
  for (const double value : values) {
    if (!std::isfinite(value)) continue;
    range.least = std::min(range.least, value);
    range.most = std::max(range.most, value);
  }
  return range;
}

// The number of steps, out of `steps`, that the value reaches. A value above the least one reaches
// at least one step.
int levelOf(double value, const Range& range, int steps) {
  if (!std::isfinite(value) || range.most <= range.least) return 0;
  const double share = (value - range.least) / (range.most - range.least);
  const int level = static_cast<int>(std::lround(share * steps));
  return share > 0 ? std::max(level, 1) : level;
}

const char* block(int level, const TextForm& form) {
  return (form.IsAscii() ? kAsciiBlocks : kBlocks).at(static_cast<std::size_t>(level));
}

// Whole numbers below a million are shown unchanged.
std::string scaleNumber(double number) {
  constexpr double kLongest = 1e6;
  const bool isShort = number == std::floor(number) && std::abs(number) < kLongest;
  return isShort ? std::to_string(static_cast<long>(number)) : ShortNumber(number);
}

// What all bars of one chart have in common.
struct Bars {
  Range range;
  int height = 0;
  std::string top;
  std::string bottom;
  std::size_t scale = 0;  // the number of columns to the left of the bars
  std::size_t bar = 1;
  std::size_t gap = 0;
};

Bars barsOf(const std::vector<double>& values, int height, std::size_t width) {
  Bars bars{.range = rangeOf(values), .height = height, .top = {}, .bottom = {}};
  bars.top = scaleNumber(bars.range.most);
  bars.bottom = scaleNumber(bars.range.least);
  bars.scale = std::max(bars.top.size(), bars.bottom.size()) + 1;
  const std::size_t count = std::max<std::size_t>(values.size(), 1);
  const std::size_t room = (width - std::min(width, bars.scale)) / count;
  bars.bar = std::clamp<std::size_t>(room > 1 ? room - 1 : 1, 1, kWidestBar);
  bars.gap = room > 1 ? 1 : 0;
  return bars;
}

std::string drawn(const std::vector<double>& values, const Bars& bars, const TextForm& form,
                  std::size_t first) {
  std::string chart;
  for (int line = bars.height - 1; line >= 0; --line) {
    std::string row;
    for (const double value : values) {
      const int level =
          std::clamp(levelOf(value, bars.range, bars.height * kSteps) - line * kSteps, 0, kSteps);
      for (std::size_t i = 0; i < bars.bar; ++i) row += block(level, form);
      row.append(bars.gap, ' ');
    }
    row.erase(row.find_last_not_of(' ') + 1);
    const std::string label = line == bars.height - 1 ? bars.top : line == 0 ? bars.bottom : "";
    chart += PadLeft(label, bars.scale - 1) + ' ' + form.Styled(row, TextForm::Style::kCyan) + '\n';
  }
  // A bar has its number below it if there is room.
  std::string numbers(bars.scale, ' ');
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::size_t at = bars.scale + i * (bars.bar + bars.gap);
    const std::string number = std::to_string(i + first);
    if (i > 0 && (numbers.size() >= at || at + number.size() > form.Width())) continue;
    numbers.resize(at, ' ');
    numbers += number;
  }
  return chart + form.Styled(numbers, TextForm::Style::kDim) + '\n';
}

}  // namespace

std::string Sparkline(const std::vector<double>& values, const TextForm& form) {
  const Range range = rangeOf(values);
  std::string line;
  for (const double value : values) {
    line += std::isfinite(value) ? block(std::max(1, levelOf(value, range, kSteps)), form) : " ";
  }
  return line;
}

std::string ShortNumber(double number) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.4g", number);
  return text.data();
}

std::string DrawBars(const std::vector<double>& values, int height, const TextForm& form,
                     std::size_t first) {
  const Bars bars = barsOf(values, height, form.Width());
  const std::size_t room = form.Width() - std::min(form.Width() - 1, bars.scale);
  if (values.size() * (bars.bar + bars.gap) <= room + bars.gap) {
    return drawn(values, bars, form, first);
  }
  std::string chart;
  for (std::size_t begin = 0; begin < values.size(); begin += room) {
    const auto from = values.begin() + static_cast<std::ptrdiff_t>(begin);
    const auto end =
        values.begin() + static_cast<std::ptrdiff_t>(std::min(begin + room, values.size()));
    chart += drawn({from, end}, bars, form, first + begin);
  }
  return chart;
}

}  // namespace vex2::lab
