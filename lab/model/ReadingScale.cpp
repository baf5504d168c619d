#include "lab/model/ReadingScale.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <numeric>

#include "lab/Text.h"

namespace vex2::lab {

namespace {

constexpr int kMostDigits = 15;  // a double keeps this many digits of any decimal number
constexpr std::int64_t kMostExact = 1LL << 53U;  // every whole number up to this is a double
constexpr int kMostDecimals = 22;                // 10 to this power is exactly a double
constexpr double kMostStored = 65535;
constexpr std::int64_t kMostSteps = 65535;

double powerOfTen(int exponent) {
  double power = 1;
  // Exact as long as the result is a double, see kMostDecimals.
  for (int i = 0; i < exponent; ++i) power *= 10;
  return power;
}

// `value` times 10 to the `power`; nothing if a double cannot hold the result exactly.
std::optional<std::int64_t> shifted(std::int64_t value, int power) {
  for (int i = 0; i < power && value != 0; ++i) {
    if (value > kMostExact / 10 || value < -kMostExact / 10) return std::nullopt;
    value *= 10;
  }
  return value;
}

// `number` times 10 to the `power`, which must be a whole number; nothing if a double cannot hold
// it exactly.
std::optional<std::int64_t> scaledBy(const DecimalNumber& number, int power) {
  return shifted(number.mantissa, number.exponent + power);
}

}  // namespace

double DecimalNumber::Value() const {
  const auto whole = static_cast<double>(mantissa);
  return exponent < 0 ? whole / powerOfTen(-exponent) : whole * powerOfTen(exponent);
}

std::optional<DecimalNumber> ShortestDecimal(double value) {
  std::array<char, 32> text{};
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::scientific)
          .ptr;
  // The text has the form "-d.ddde-dd".
  std::string digits;
  DecimalNumber result;
  for (const char* at = text.data(); at != end; ++at) {
    if (*at == 'e') {
      const char* const exponent = at[1] == '+' ? at + 2 : at + 1;
      std::from_chars(exponent, end, result.exponent);
      break;
    }
    if (*at != '.') digits += *at;
  }
  const int count = static_cast<int>(digits.size()) - (digits.front() == '-' ? 1 : 0);
  const auto mantissa = NumberIn<std::int64_t>(digits);
  if (count > kMostDigits || !mantissa) return std::nullopt;
  result.mantissa = *mantissa;
  result.exponent -= count - 1;
  if (result.mantissa == 0) return DecimalNumber{};
  if (result.exponent < -kMostDecimals) return std::nullopt;
  return result;
}

ReadingScale::ReadingScale(std::uint64_t numerator, std::uint64_t denominator, DecimalNumber offset)
    : offset_(offset) {
  const std::uint64_t common = std::gcd(numerator, denominator);
  numerator_ = numerator / common;
  denominator_ = denominator / common;
  findSteps();
}

// The step is a decimal number if the scale's numerator has no other prime factors than 2 and 5.
void ReadingScale::findSteps() {
  std::uint64_t rest = numerator_;
  int twos = 0;
  int fives = 0;
  for (; rest % 2 == 0; rest /= 2) ++twos;
  for (; rest % 5 == 0; rest /= 5) ++fives;
  const int needed = std::max(twos, fives);
  const int decimals = std::max({needed, -offset_.exponent, 0});
  if (rest != 1 || decimals > kMostDecimals) return;
  // The step is denominator / numerator = denominator * 2^(needed-twos) * 5^(needed-fives) /
  // 10^needed.
  auto step = static_cast<std::int64_t>(denominator_);
  const auto times = [&](std::int64_t factor, int count) {
    for (int i = 0; i < count; ++i) {
      if (step > kMostExact / factor) return false;
      step *= factor;
    }
    return true;
  };
  if (!times(2, needed - twos) || !times(5, needed - fives)) return;
  const auto whole = shifted(step, decimals - needed);
  const auto base = scaledBy(offset_, decimals);
  if (!whole || !base || *whole > (kMostExact - std::abs(*base)) / kMostSteps) return;
  isDecimal_ = true;
  decimals_ = decimals;
  step_ = *whole;
  base_ = *base;
}

std::optional<DecimalNumber> ReadingScale::ParseOffset(std::string_view text) {
  const auto value = NumberIn<double>(text);
  if (!value || !std::isfinite(*value) || std::abs(*value) > kLargestReading) return std::nullopt;
  return ShortestDecimal(*value);
}

std::optional<ReadingScale> ReadingScale::Parse(std::string_view text, DecimalNumber offset) {
  const auto isPart = [](std::uint64_t part) { return part >= 1 && part <= kLargestPart; };
  const std::size_t bar = text.find('/');
  if (bar != std::string_view::npos) {
    const auto numerator = NumberIn<std::uint64_t>(text.substr(0, bar));
    const auto denominator = NumberIn<std::uint64_t>(text.substr(bar + 1));
    if (!numerator || !denominator || !isPart(*numerator) || !isPart(*denominator)) return {};
    return ReadingScale(*numerator, *denominator, offset);
  }
  const auto value = NumberIn<double>(text, std::chars_format::fixed);
  if (!value || !(*value > 0) || !(*value <= static_cast<double>(kLargestPart))) return {};
  const auto decimal = ShortestDecimal(*value);
  if (!decimal) return {};
  const auto numerator = shifted(decimal->mantissa, std::max(decimal->exponent, 0));
  const auto denominator = shifted(1, std::max(-decimal->exponent, 0));
  if (!numerator || !denominator || !isPart(static_cast<std::uint64_t>(*numerator)) ||
      !isPart(static_cast<std::uint64_t>(*denominator))) {
    return {};
  }
  return ReadingScale(static_cast<std::uint64_t>(*numerator),
                      static_cast<std::uint64_t>(*denominator), offset);
}

std::optional<std::uint16_t> ReadingScale::Store(double reading) const {
  const double moved = HasOffset() ? reading - offset_.Value() : reading;
  const double exact = moved * static_cast<double>(numerator_) / static_cast<double>(denominator_);
  const double rounded = std::round(exact);
  if (!(moved >= 0 && rounded <= kMostStored)) return std::nullopt;
  const auto stored = static_cast<std::uint16_t>(rounded);
  // Because of rounding, an adjacent number may represent the reading exactly.
  if (Measured(stored) == reading) return stored;
  for (const double other : {rounded - 1, rounded + 1}) {
    if (other < 0 || other > kMostStored) continue;
    if (Measured(static_cast<std::uint16_t>(other)) == reading) {
      return static_cast<std::uint16_t>(other);
    }
  }
  return stored;
}

double ReadingScale::Measured(std::uint16_t stored) const {
  if (isDecimal_) {
    return static_cast<double>(base_ + step_ * std::int64_t{stored}) / powerOfTen(decimals_);
  }
  const double steps = static_cast<double>(stored) * static_cast<double>(denominator_) /
                       static_cast<double>(numerator_);
  return HasOffset() ? steps + offset_.Value() : steps;
}

std::string ReadingScale::MeasuredText(std::uint16_t stored) const {
  return PlainText(Measured(stored));
}

double ReadingScale::Step() const {
  return static_cast<double>(denominator_) / static_cast<double>(numerator_);
}

std::string ReadingScale::ScaleText() const {
  const std::string numerator = std::to_string(numerator_);
  return denominator_ == 1 ? numerator : numerator + "/" + std::to_string(denominator_);
}

std::string ReadingScale::OffsetText() const {
  return PlainText(offset_.Value());
}

std::string PlainText(double number) {
  // A reading has at most 13 digits before the point. The shortest text of a double of that size
  // has at most 60 digits after it. So 400 are enough.
  std::array<char, 400> text{};
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed).ptr;
  return {text.data(), end};
}

}  // namespace vex2::lab
