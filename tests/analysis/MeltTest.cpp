// Tests the rules for melting peaks on curves whose peaks are known.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "lab/analysis/MeltPeaks.h"

namespace vex2::test {
namespace {

using lab::AllPeaks;
using lab::DerivativeOf;
using lab::MeltPeak;

// A product of this brightness that melts around `at`; its fluorescence falls as a logistic curve.
struct Product {
  double at;
  double brightness = 4;
  double steepness = 0.5;  // degrees
};

struct Melt {
  std::vector<double> temperatures;
  std::vector<double> readings;
};

Melt meltOf(const std::vector<Product>& products, double step = 0.2) {
  Melt melt;
  for (double temperature = 60; temperature <= 95; temperature += step) {
    double light = 0.5;
    for (const Product& product : products) {
      light += product.brightness / (1 + std::exp((temperature - product.at) / product.steepness));
    }
    melt.temperatures.push_back(temperature);
    melt.readings.push_back(light);
  }
  return melt;
}

std::vector<MeltPeak> peaksOf(const Melt& melt) {
  const auto derivative = DerivativeOf(melt.temperatures, melt.readings);
  return AllPeaks(melt.temperatures, derivative.values, derivative.errors);
}

// The peak in the derivative of a logistic curve has the height brightness / (4 steepness), and at
// half of it the width 3.5255 steepness. The window of 2 degrees makes the peak slightly wider.
TEST(MeltPeaks, HaveTheTemperatureAndWidthOfTheProduct) {
  const auto peaks = peaksOf(meltOf({{.at = 81.33, .brightness = 4, .steepness = 1}}));
  ASSERT_EQ(peaks.size(), 1U);
  EXPECT_NEAR(peaks[0].temperature, 81.33, 0.01);
  EXPECT_NEAR(peaks[0].height, 1, 0.1);
  EXPECT_NEAR(peaks[0].width, 3.5255, 0.3);
  EXPECT_NEAR(peaks[0].prominence, peaks[0].height, 0.01);
}

TEST(MeltPeaks, OfTwoProductsAreTwo) {
  const auto peaks = peaksOf(meltOf({{.at = 75}, {.at = 84, .brightness = 2}}));
  ASSERT_EQ(peaks.size(), 2U);
  EXPECT_NEAR(peaks[0].temperature, 75, 0.05);
  EXPECT_NEAR(peaks[1].temperature, 84, 0.05);
  EXPECT_NEAR(peaks[0].height / peaks[1].height, 2, 0.05);
}

TEST(MeltPeaks, OnAShoulderHaveTheProminenceAboveTheValley) {
  const std::vector<double> temperatures = {70, 71, 72, 73, 74, 75, 76};
  const auto peaks = AllPeaks(temperatures, std::vector<double>{0, 4, 10, 6, 8, 3, 1},
                              std::vector<double>{4, 3, 3, 4, 3, 2, 4});
  ASSERT_EQ(peaks.size(), 2U);
  EXPECT_EQ(peaks[0].prominence, 9);  // above 1, the higher of both ends
  EXPECT_EQ(peaks[1].prominence, 2);  // above the valley of 6
  // The clearest falls are from 10 to 3 with the errors 3 and 2, and from 8 to 6 with 3 and 4.
  EXPECT_NEAR(peaks[0].prominenceError, 9 / (7 / std::sqrt(13)), 1e-9);
  EXPECT_NEAR(peaks[1].prominenceError, 5, 1e-9);
  // At half of the prominence, 7, the peak reaches from 73.5 to 74.2.
  EXPECT_NEAR(peaks[1].width, 0.7, 1e-9);
}

TEST(MeltPeaks, AreThereAtAnyDistanceOfTemperatures) {
  for (const double step : {0.05, 0.3, 1.0}) {
    const auto peaks = peaksOf(meltOf({{.at = 80, .brightness = 4, .steepness = 1.5}}, step));
    ASSERT_EQ(peaks.size(), 1U) << step;
    EXPECT_NEAR(peaks[0].temperature, 80, 0.05) << step;
  }
}

TEST(MeltDerivative, OfALineIsItsSlope) {
  Melt melt = meltOf({});
  for (std::size_t i = 0; i < melt.readings.size(); ++i) {
    melt.readings[i] = 9 - 0.25 * melt.temperatures[i];
  }
  const auto derivative = DerivativeOf(melt.temperatures, melt.readings);
  EXPECT_THAT(derivative.values, testing::Each(testing::DoubleNear(0.25, 1e-6)));
  EXPECT_NEAR(derivative.noise, 0, 1e-6);
}

// By the inverse of the normal equations: in the middle of five readings the slope has the error of
// a line's, 1 / root 10; at an end that of a parabola's, whose bend is as uncertain.
TEST(MeltDerivative, HasTheErrorsOfAParabola) {
  const std::vector<double> temperatures = {60, 61, 62, 63, 64, 65, 66};
  const auto derivative = DerivativeOf(temperatures, std::vector<double>(7, 1));
  EXPECT_NEAR(derivative.errors[3], 1 / std::sqrt(10), 1e-9);
  EXPECT_NEAR(derivative.errors[0], std::sqrt(0.1 + 16.0 / 14), 1e-9);
  EXPECT_NEAR(derivative.errors[6], derivative.errors[0], 1e-9);
}

TEST(MeltDerivative, HasTheNoiseOfTheReadings) {
  std::mt19937 random(3);
  std::normal_distribution<double> noise(0, 0.02);
  Melt melt = meltOf({}, 0.5);
  double sum = 0;
  constexpr int kCurves = 200;
  for (int i = 0; i < kCurves; ++i) {
    for (double& reading : melt.readings) reading = 1 + noise(random);
    sum += DerivativeOf(melt.temperatures, melt.readings).noise;
  }
  EXPECT_NEAR(sum / kCurves, 0.02, 0.001);
}

TEST(MeltDerivative, OfUnevenTemperaturesIsExactForAParabola) {
  const std::vector<double> temperatures = {60, 60.1, 60.35, 60.8, 61.2, 61.9, 63, 64.5, 64.6};
  std::vector<double> readings;
  for (const double x : temperatures) readings.push_back(3 + 2 * (x - 62) - (x - 62) * (x - 62));
  const auto derivative = DerivativeOf(temperatures, readings);
  for (std::size_t i = 0; i < temperatures.size(); ++i) {
    EXPECT_NEAR(derivative.values[i], -(2 - 2 * (temperatures[i] - 62)), 1e-6) << i;
  }
}

}  // namespace
}  // namespace vex2::test
