#include "tools/vex/text/Chart.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "tools/vex/text/Text.h"

namespace vex2::tool {

namespace {

constexpr std::array<const char*, 9> kBlocks = {" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
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

// Whole numbers that are not too long are shown as they are.
std::string scaleNumber(double number) {
  constexpr double kLongest = 1e6;
  const bool isShort = number == std::floor(number) && std::abs(number) < kLongest;
  return isShort ? std::to_string(static_cast<long>(number)) : ShortNumber(number);
}

}  // namespace

std::string Sparkline(const std::vector<double>& values) {
  const Range range = rangeOf(values);
  std::string line;
  for (const double value : values) {
    line += std::isfinite(value)
                ? kBlocks.at(static_cast<std::size_t>(std::max(1, levelOf(value, range, kSteps))))
                : " ";
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
  const Range range = rangeOf(values);
  const std::string top = scaleNumber(range.most);
  const std::string bottom = scaleNumber(range.least);
  const std::size_t scale = std::max(top.size(), bottom.size()) + 1;
  const std::size_t count = std::max<std::size_t>(values.size(), 1);
  const std::size_t room = (terminal.Width() - std::min(terminal.Width(), scale)) / count;
  const std::size_t bar = std::clamp<std::size_t>(room > 1 ? room - 1 : 1, 1, kWidestBar);
  const std::string gap(room > 1 ? 1 : 0, ' ');
  std::string chart;
  for (int line = height - 1; line >= 0; --line) {
    std::string row;
    for (const double value : values) {
      const int level =
          std::clamp(levelOf(value, range, height * kSteps) - line * kSteps, 0, kSteps);
      for (std::size_t i = 0; i < bar; ++i) row += kBlocks.at(static_cast<std::size_t>(level));
      row += gap;
    }
    row.erase(row.find_last_not_of(' ') + 1);
    const std::string& label = line == height - 1 ? top : line == 0 ? bottom : std::string();
    chart += PadLeft(label, scale - 1) + ' ' + terminal.Styled(row, Terminal::Style::kCyan) + '\n';
  }
  // Numbers stand under their bars as far as there is room for them.
  std::string numbers(scale, ' ');
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::size_t at = scale + i * (bar + gap.size());
    const std::string number = std::to_string(i + first);
    if (i > 0 && numbers.size() >= at) continue;
    numbers.resize(at, ' ');
    numbers += number;
  }
  return chart + terminal.Styled(numbers, Terminal::Style::kDim) + '\n';
}

}  // namespace vex2::tool
