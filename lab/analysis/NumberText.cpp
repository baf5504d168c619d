#include "lab/analysis/NumberText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace vex2::lab {

namespace {

constexpr int kMostDecimals = 330;  // of the smallest number above 0

}  // namespace

std::string DecimalsText(double number, int decimals) {
  std::array<char, 400> text{};  // a double has at most 309 digits before the point
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number,
                                 std::chars_format::fixed, decimals)
                       .ptr;
  std::string result(text.data(), end);
  if (result.find('.') == std::string::npos) return result;
  result.erase(result.find_last_not_of('0') + 1);
  if (result.back() == '.') result.pop_back();
  return result == "-0" ? "0" : result;
}

std::string MeasuredText(double number) {
  constexpr int kDigits = 6;
  if (number == 0 || !std::isfinite(number)) return DecimalsText(number, 0);
  const int magnitude = static_cast<int>(std::floor(std::log10(std::fabs(number))));
  return DecimalsText(number, std::clamp(kDigits - 1 - magnitude, kDigits, kMostDecimals));
}

std::string NumberText(double number) {
  constexpr int kDigits = 3;
  if (number == 0 || !std::isfinite(number)) return DecimalsText(number, 0);
  const int magnitude = static_cast<int>(std::floor(std::log10(std::fabs(number))));
  return DecimalsText(number, std::clamp(kDigits - 1 - magnitude, 0, kMostDecimals));
}

}  // namespace vex2::lab
