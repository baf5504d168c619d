#include "tools/vex/text/Chart.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "lab/text/Columns.h"

namespace vex2::tool {

namespace {

// From nothing to a full block.
constexpr std::array<const char*, 9> kBlocks = {" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
constexpr std::array<const char*, 9> kAsciiBlocks = {" ", "_", ".", "-", ":", "=", "+", "*", "#"};
constexpr int kSteps = 8;  // of a block
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

// How many of `steps` the value reaches; what is there at all reaches one.
int levelOf(double value, const Range& range, int steps) {
  if (!std::isfinite(value) || range.most <= range.least) return 0;
  const double share = (value - range.least) / (range.most - range.least);
  const int level = static_cast<int>(std::lround(share * steps));
  return share > 0 ? std::max(level, 1) : level;
}

const char* block(int level) {
  return (Terminal::Out().IsAscii() ? kAsciiBlocks : kBlocks).at(static_cast<std::size_t>(level));
}

// Whole numbers that are not too long are shown as they are.
std::string scaleNumber(double number) {
  constexpr double kLongest = 1e6;
  const bool isShort = number == std::floor(number) && std::abs(number) < kLongest;
  return isShort ? std::to_string(static_cast<long>(number)) : ShortNumber(number);
}

// What the bars of one chart have in common.
struct BarForm {
  Range range;
  int height = 0;
  std::string top;
  std::string bottom;
  std::size_t scale = 0;  // the columns to the left of the bars
  std::size_t bar = 1;
  std::size_t gap = 0;
};

BarForm barForm(const std::vector<double>& values, int height, std::size_t width) {
  BarForm form{.range = rangeOf(values), .height = height, .top = {}, .bottom = {}};
  form.top = scaleNumber(form.range.most);
  form.bottom = scaleNumber(form.range.least);
  form.scale = std::max(form.top.size(), form.bottom.size()) + 1;
  const std::size_t count = std::max<std::size_t>(values.size(), 1);
  const std::size_t room = (width - std::min(width, form.scale)) / count;
  form.bar = std::clamp<std::size_t>(room > 1 ? room - 1 : 1, 1, kWidestBar);
  form.gap = room > 1 ? 1 : 0;
  return form;
}

std::string bars(const std::vector<double>& values, const BarForm& form, const Terminal& terminal,
                 std::size_t first) {
  std::string chart;
  for (int line = form.height - 1; line >= 0; --line) {
    std::string row;
    for (const double value : values) {
      const int level =
          std::clamp(levelOf(value, form.range, form.height * kSteps) - line * kSteps, 0, kSteps);
      for (std::size_t i = 0; i < form.bar; ++i) row += block(level);
      row.append(form.gap, ' ');
    }
    row.erase(row.find_last_not_of(' ') + 1);
    const std::string label = line == form.height - 1 ? form.top : line == 0 ? form.bottom : "";
    chart +=
        PadLeft(label, form.scale - 1) + ' ' + terminal.Styled(row, Terminal::Style::kCyan) + '\n';
  }
  // Numbers stand under their bars as far as there is room for them.
  std::string numbers(form.scale, ' ');
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::size_t at = form.scale + i * (form.bar + form.gap);
    const std::string number = std::to_string(i + first);
    if (i > 0 && (numbers.size() >= at || at + number.size() > terminal.Width())) continue;
    numbers.resize(at, ' ');
    numbers += number;
  }
  return chart + terminal.Styled(numbers, Terminal::Style::kDim) + '\n';
}

}  // namespace

std::string Sparkline(const std::vector<double>& values) {
  const Range range = rangeOf(values);
  std::string line;
  for (const double value : values) {
    line += std::isfinite(value) ? block(std::max(1, levelOf(value, range, kSteps))) : " ";
  }
  return line;
}

std::string ShortNumber(double number) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.4g", number);
  return text.data();
}

std::string DrawBars(const std::vector<double>& values, int height, const Terminal& terminal,
                     std::size_t first) {
  const BarForm form = barForm(values, height, terminal.Width());
  const std::size_t room = terminal.Width() - std::min(terminal.Width() - 1, form.scale);
  if (values.size() * (form.bar + form.gap) <= room + form.gap) {
    return bars(values, form, terminal, first);
  }
  std::string chart;
  for (std::size_t begin = 0; begin < values.size(); begin += room) {
    const auto from = values.begin() + static_cast<std::ptrdiff_t>(begin);
    const auto end =
        values.begin() + static_cast<std::ptrdiff_t>(std::min(begin + room, values.size()));
    chart += bars({from, end}, form, terminal, first + begin);
  }
  return chart;
}

}  // namespace vex2::tool
