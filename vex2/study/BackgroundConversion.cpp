#include "vex2/study/BackgroundConversion.h"

#include <array>

namespace vex2 {

namespace {

constexpr std::size_t kGroups = 4;
constexpr std::size_t kGroupSize = 3;
constexpr std::size_t kFactorsAt = kGroups * kGroupSize;
constexpr std::size_t kRatesAt = 2 * kFactorsAt;

// Fits a straight line through the points (reading, scaled reading) of a group, and returns `scale`
// times the difference between the first scaled reading and the line's intercept, divided by the
// first reading. Do not reorder the operations: the result must equal that of other programs
// exactly.
double rateOf(std::span<const float> readings, std::span<const float> factors, double scale) {
  std::array<double, kGroupSize> x{};
  std::array<double, kGroupSize> y{};
  double sumX = 0;
  double sumY = 0;
  for (std::size_t k = 0; k < kGroupSize; ++k) {
    x[k] = readings[k];
    y[k] = double{factors[k]} * x[k] / scale;
    sumX += x[k];
    sumY += y[k];
  }
  const double meanX = sumX / kGroupSize;
  double products = 0;
  double squares = 0;
  for (std::size_t k = 0; k < kGroupSize; ++k) {
    products += (x[k] - meanX) * y[k];
    squares += (x[k] - meanX) * (x[k] - meanX);
  }
  const double slope = products / squares;
  const double start = (sumY - slope * sumX) / kGroupSize;
  const double rate = scale * (y[0] - start) / x[0];
  return rate > 0 ? rate : 0;
}

}  // namespace

void ConvertBackground(std::span<float> values, double scale) {
  if (values.size() < kBackgroundValues) return;
  for (std::size_t group = 0; group < kGroups; ++group) {
    const auto readings = values.subspan(group * kGroupSize, kGroupSize);
    const auto factors = values.subspan(kFactorsAt + group * kGroupSize, kGroupSize);
    values[kRatesAt + group] = static_cast<float>(rateOf(readings, factors, scale));
  }
}

}  // namespace vex2
