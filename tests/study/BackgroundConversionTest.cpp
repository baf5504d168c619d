// Compares the rates of a background document with a fit by another method, and tests corner cases.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>

#include "vex2/study/BackgroundConversion.h"

namespace vex2::test {
namespace {

using Values = std::array<float, kBackgroundValues>;

// Sets the values of a group: its readings (from index 0) and its factors (from index 12).
void setGroup(Values& values, std::size_t group, std::array<float, 3> readings,
              std::array<float, 3> factors) {
  for (std::size_t k = 0; k < 3; ++k) {
    values.at(3 * group + k) = readings.at(k);
    values.at(12 + 3 * group + k) = factors.at(k);
  }
}

// Computes the rate from the normal equations, solved by Cramer's rule in extended precision.
long double rateByNormalEquations(const Values& values, std::size_t group, long double scale) {
  std::array<long double, 3> x{};
  std::array<long double, 3> y{};
  long double sumX = 0;
  long double sumY = 0;
  long double sumXX = 0;
  long double sumXY = 0;
  for (std::size_t k = 0; k < 3; ++k) {
    x.at(k) = values.at(3 * group + k);
    y.at(k) = values.at(12 + 3 * group + k) * x.at(k) / scale;
    sumX += x.at(k);
    sumY += y.at(k);
    sumXX += x.at(k) * x.at(k);
    sumXY += x.at(k) * y.at(k);
  }
  const long double intercept = (sumY * sumXX - sumX * sumXY) / (3 * sumXX - sumX * sumX);
  const long double rate = scale * (y[0] - intercept) / x[0];
  return rate > 0 ? rate : 0;
}

TEST(BackgroundConversion, AgreesWithAnotherLeastSquaresFit) {
  std::mt19937 random(20261121);
  std::uniform_int_distribution<int> reading(1, 65535);
  int compared = 0;
  for (int round = 0; round < 10000; ++round) {
    Values values{};
    for (std::size_t i = 0; i < 24; ++i) values.at(i) = static_cast<float>(reading(random));
    const Values before = values;
    const double scale = round % 2 == 0 ? 16 : 1024;
    ConvertBackground(values, scale);
    for (std::size_t group = 0; group < 4; ++group) {
      const long double expected = rateByNormalEquations(before, group, scale);
      const auto found = static_cast<long double>(values.at(24 + group));
      // If the readings are nearly equal, neither method has enough digits for a comparison.
      const auto [low, high] =
          std::minmax({before.at(3 * group), before.at(3 * group + 1), before.at(3 * group + 2)});
      if (high - low < 100) continue;
      // A rate that is nearly 0 because its terms cancel has fewer digits.
      const long double tolerance = 1e-6L * std::max(expected, 1e-3L);
      EXPECT_LE(std::abs(found - expected), tolerance) << "round " << round << ", group " << group;
      ++compared;
    }
    for (std::size_t i = 0; i < 24; ++i) EXPECT_EQ(values.at(i), before.at(i));
  }
  EXPECT_GT(compared, 39900);
}

TEST(BackgroundConversion, IsTheFactorWhereAllFactorsAgree) {
  // The line goes through the origin, so its intercept is 0.
  Values values{};
  for (std::size_t group = 0; group < 4; ++group) {
    const auto factor = static_cast<float>(group + 2);
    setGroup(values, group, {100, 200, 400}, {factor, factor, factor});
  }
  ConvertBackground(values, 16);
  for (std::size_t group = 0; group < 4; ++group) {
    EXPECT_NEAR(values.at(24 + group), static_cast<float>(group + 2), 1e-5);
  }
}

TEST(BackgroundConversion, RateBelowZeroIsZero) {
  Values values{};
  setGroup(values, 2, {300, 200, 100}, {1, 1, 4});
  ASSERT_EQ(rateByNormalEquations(values, 2, 16), 0);
  values[26] = 5;
  ConvertBackground(values, 16);
  EXPECT_EQ(values[26], 0);
}

TEST(BackgroundConversion, RateOfReadingsWithoutSpreadIsZero) {
  Values values{};
  values[24] = 5;
  setGroup(values, 0, {7, 7, 7}, {1, 2, 3});
  ConvertBackground(values, 16);
  EXPECT_EQ(values[24], 0);
}

TEST(BackgroundConversion, RateOfAReadingOfZeroIsZeroOrEndless) {
  Values values{};
  setGroup(values, 0, {0, 10, 20}, {1, 2, 1});  // the line starts above zero
  setGroup(values, 1, {0, 10, 20}, {1, 1, 2});  // and below
  setGroup(values, 2, {0, 0, 0}, {1, 1, 1});
  ConvertBackground(values, 16);
  EXPECT_EQ(values[24], 0);
  EXPECT_EQ(values[25], std::numeric_limits<float>::infinity());
  EXPECT_EQ(values[26], 0);
}

TEST(BackgroundConversion, WithTooFewValuesChangesNothing) {
  std::array<float, kBackgroundValues - 1> values{};
  values.fill(3);
  ConvertBackground(values, 16);
  for (const float value : values) EXPECT_EQ(value, 3);
}

}  // namespace
}  // namespace vex2::test
