#include "lab/record/ScaleChoice.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>

namespace vex2::lab {

namespace {

constexpr double kMostStored = 65535;
constexpr std::uint16_t kLargest = 65535;
constexpr std::array<int, 19> kPowers = {3,  2,  1,  0, -1, -2, -3, -4, -5, -6,
                                         -7, -8, -9, 4, 5,  6,  7,  8,  9};
constexpr double kHeadroom = 16;
constexpr int kStepDigits = 6;

std::uint64_t wholePower(int exponent) {
  std::uint64_t power = 1;
  for (int i = 0; i < exponent; ++i) power *= 10;
  return power;
}

ReadingScale powerScale(int exponent, DecimalNumber offset) {
  return exponent >= 0 ? ReadingScale(wholePower(exponent), offset)
                       : ReadingScale(1, wholePower(-exponent), offset);
}

// The scale whose step is `mantissa` times 10 to the `exponent`; nothing if its numerator or
// denominator is too large.
std::optional<ReadingScale> scaleOfStep(std::uint64_t mantissa, int exponent,
                                        DecimalNumber offset) {
  if (mantissa == 0 || exponent < -12 || exponent > 12) return std::nullopt;
  std::uint64_t numerator = wholePower(std::max(-exponent, 0));
  std::uint64_t denominator = wholePower(std::max(exponent, 0));
  if (mantissa > ReadingScale::kLargestPart / denominator) return std::nullopt;
  return ReadingScale(numerator, denominator * mantissa, offset);
}

// Chooses a scale, and possibly an offset. Keeps the readings sorted and without duplicates.
class Choice {
 public:
  Choice(std::vector<double> readings, std::optional<DecimalNumber> offset)
      : readings_(std::move(readings)), given_(offset) {
    std::sort(readings_.begin(), readings_.end());
    readings_.erase(std::unique(readings_.begin(), readings_.end()), readings_.end());
  }

  ReadingScale Make() const {
    if (readings_.empty()) return ReadingScale(1000, given_.value_or(DecimalNumber{}));
    const std::optional<DecimalNumber> lowest = lowestAsOffset();
    const DecimalNumber plain = given_.value_or(DecimalNumber{});
    Best best = bestOf(plain);
    if (given_ || !lowest || best.change == 0) return best.scale;
    const Best moved = bestOf(*lowest);
    const bool isWorth =
        readings_.front() < 0 || moved.change == 0 || moved.change * 2 <= best.change;
    return isWorth && moved.change < best.change ? moved.scale : best.scale;
  }

 private:
  struct Best {
    ReadingScale scale;
    double change = std::numeric_limits<double>::infinity();
  };

  Best bestOf(DecimalNumber offset) const {
    Best best{powerScale(0, offset)};
    const auto tryOut = [&](const std::optional<ReadingScale>& scale) {
      if (!scale || best.change == 0) return;
      const double change = largestChange(*scale, best.change);
      if (change < best.change) best = {*scale, change};
    };
    for (const int power : kPowers) tryOut(powerScale(power, offset));
    tryOut(commonStep(offset));
    tryOut(finestStep(offset));
    return best;
  }

  // The largest change that the scale makes to a reading. Infinite if a reading does not fit, or if
  // the change is not below `enough`.
  double largestChange(const ReadingScale& scale, double enough) const {
    double largest = 0;
    for (const double reading : {readings_.front(), readings_.back()}) {
      if (!scale.Store(reading)) return std::numeric_limits<double>::infinity();
    }
    for (const double reading : readings_) {
      largest = std::max(largest, std::abs(reading - scale.Measured(*scale.Store(reading))));
      if (largest >= enough) return std::numeric_limits<double>::infinity();
    }
    return largest;
  }

  std::optional<DecimalNumber> lowestAsOffset() const {
    const auto lowest = ShortestDecimal(readings_.front());
    if (lowest) return lowest;
    // The lowest reading has more digits than an offset can have, so take the next lower whole
    // number.
    return ShortestDecimal(std::floor(readings_.front()));
  }

  // The scale whose step is the greatest common divisor of the distances of all readings from
  // `offset`.
  std::optional<ReadingScale> commonStep(DecimalNumber offset) const {
    int exponent = offset.mantissa == 0 ? 0 : offset.exponent;
    std::vector<DecimalNumber> numbers;
    for (const double reading : readings_) {
      const auto number = ShortestDecimal(reading);
      if (!number) return std::nullopt;
      exponent = numbers.empty() && offset.mantissa == 0 ? number->exponent
                                                         : std::min(exponent, number->exponent);
      numbers.push_back(*number);
    }
    const auto base = wholeAt(offset, exponent);
    if (!base) return std::nullopt;
    std::uint64_t step = 0;
    for (const DecimalNumber& number : numbers) {
      const auto whole = wholeAt(number, exponent);
      if (!whole) return std::nullopt;
      step = std::gcd(step, static_cast<std::uint64_t>(std::abs(*whole - *base)));
    }
    return scaleOfStep(step, exponent, offset);
  }

  static std::optional<std::int64_t> wholeAt(const DecimalNumber& number, int exponent) {
    std::int64_t whole = number.mantissa;
    for (int i = exponent; i < number.exponent && whole != 0; ++i) {
      if (std::abs(whole) > std::numeric_limits<std::int64_t>::max() / 100) return std::nullopt;
      whole *= 10;
    }
    return whole;
  }

  // The scale with the smallest step of six digits that stores the highest reading as less than
  // 65535. A reading that is stored as 65535 looks as if it had been cut off.
  std::optional<ReadingScale> finestStep(DecimalNumber offset) const {
    const double range = readings_.back() - offset.Value();
    if (!(range > 0)) return std::nullopt;
    const double step = range / (kMostStored - 1);
    int exponent = static_cast<int>(std::floor(std::log10(step))) - kStepDigits + 1;
    exponent = std::max(exponent, -12);
    const double unit = exponent < 0 ? 1 / static_cast<double>(wholePower(-exponent))
                                     : static_cast<double>(wholePower(std::min(exponent, 12)));
    auto mantissa = static_cast<std::uint64_t>(std::ceil(step / unit));
    for (int tries = 0; tries < 3; ++tries, ++mantissa) {
      const auto scale = scaleOfStep(mantissa, exponent, offset);
      if (scale && scale->Store(readings_.back()).value_or(kLargest) < kLargest) return scale;
    }
    return std::nullopt;
  }

  std::vector<double> readings_;
  std::optional<DecimalNumber> given_;
};

}  // namespace

ReadingScale ChooseScale(std::vector<double> readings, std::optional<DecimalNumber> offset) {
  return Choice(std::move(readings), offset).Make();
}

ReadingScale ChooseScaleAhead(const std::vector<double>& firstFrame,
                              std::optional<DecimalNumber> offset) {
  double largest = 0;
  bool isNegative = false;
  for (const double reading : firstFrame) {
    const double moved = offset ? reading - offset->Value() : reading;
    largest = std::max(largest, std::abs(moved));
    isNegative = isNegative || moved < 0;
  }
  const bool isSigned = isNegative && !offset;
  const double room = isSigned ? (kMostStored - 1) / 2 : kMostStored;
  for (int power = 3; power >= -9; --power) {
    const DecimalNumber below{isSigned ? -32767 : 0, isSigned ? -power : 0};
    const ReadingScale scale = powerScale(power, offset.value_or(below));
    if (largest * kHeadroom / scale.Step() <= room) return scale;
  }
  return powerScale(-9, offset.value_or(DecimalNumber{}));
}

}  // namespace vex2::lab
