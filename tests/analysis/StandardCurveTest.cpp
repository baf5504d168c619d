// Tests standard curves, the quantities computed from them, and relative quantities.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "lab/analysis/Comparison.h"
#include "lab/analysis/NumberText.h"
#include "lab/analysis/StandardCurve.h"
#include "lab/analysis/Statistics.h"
#include "tests/analysis/Curves.h"

namespace vex2::test {
namespace {

using lab::CqResult;
using lab::DetectorResult;
using lab::EstimateQuantity;
using lab::FitStandardCurve;
using lab::StandardCurve;
using lab::StandardPoint;

StandardPoint standardOf(double quantity, std::optional<double> cq) {
  return {.well = {}, .quantity = quantity, .cq = cq, .residual = 0};
}

// Cycles scattered about the line 38 - 10/3 x log10(quantity).
std::vector<StandardPoint> scattered() {
  std::vector<StandardPoint> points;
  for (const double quantity : {1e1, 1e2, 1e3, 1e4}) {
    const double cq = 38 - 10.0 / 3 * std::log10(quantity);
    for (const double residual : {-0.1, 0.0, 0.1}) {
      points.push_back(standardOf(quantity, cq + residual));
    }
  }
  return points;
}

TEST(StudentLimit, IsThatOfTheTables) {
  EXPECT_NEAR(lab::StudentLimit(0.95, 1), 12.7062, 1e-4);
  EXPECT_NEAR(lab::StudentLimit(0.95, 2), 4.3027, 1e-4);
  EXPECT_NEAR(lab::StudentLimit(0.95, 3), 3.1824, 1e-4);
  EXPECT_NEAR(lab::StudentLimit(0.95, 10), 2.2281, 1e-4);
  EXPECT_NEAR(lab::StudentLimit(0.95, 13), 2.1604, 1e-4);
  EXPECT_NEAR(lab::StudentLimit(0.99, 30), 2.7500, 1e-4);
  EXPECT_NEAR(lab::StudentLimit(0.95, 1'000'000), 1.96, 1e-3);
}

TEST(StandardCurve, OfALineHasItsSlopeAndEfficiency) {
  const auto curve = FitStandardCurve(
      "MYC",
      {standardOf(10, 30), standardOf(100, 30 - std::log2(10)), standardOf(1, 30 + std::log2(10))});
  ASSERT_TRUE(curve);
  EXPECT_NEAR(curve->slope, -3.321928, 1e-6);
  EXPECT_NEAR(curve->intercept, 30 + std::log2(10), 1e-9);
  ASSERT_TRUE(curve->efficiency);
  EXPECT_NEAR(*curve->efficiency, 1, 1e-9);
  EXPECT_NEAR(curve->rSquared, 1, 1e-12);
  EXPECT_EQ(curve->limitOfDetection, 1);
}

// Computed by hand: 12 wells, residuals of 0.1, so s^2 = 8 x 0.01 / 10 and Sxx = 3 x 5.
TEST(StandardCurve, HasTheIntervalsOfRegression) {
  const auto curve = FitStandardCurve("MYC", scattered());
  ASSERT_TRUE(curve && curve->efficiencyLow && curve->efficiencyHigh);
  const double deviation = std::sqrt(0.008);
  EXPECT_NEAR(curve->residualDeviation, deviation, 1e-9);
  EXPECT_NEAR(curve->sumOfSquares, 15, 1e-9);
  const double margin = 2.22814 * deviation / std::sqrt(15);
  EXPECT_NEAR(*curve->efficiencyLow, std::pow(10, 1 / (10.0 / 3 + margin)) - 1, 1e-6);
  EXPECT_NEAR(*curve->efficiencyHigh, std::pow(10, 1 / (10.0 / 3 - margin)) - 1, 1e-6);
  EXPECT_NEAR(curve->rSquaredOfMeans, 1, 1e-9);
  EXPECT_LT(curve->rSquared, 1);
  EXPECT_NEAR(curve->points[0].residual, -0.1, 1e-9);
}

TEST(StandardCurve, GivesQuantitiesWithTheIntervalOfInverseRegression) {
  const auto curve = FitStandardCurve("MYC", scattered());
  const auto middle = EstimateQuantity(*curve, 38 - 10.0 / 3 * 2.5);
  ASSERT_TRUE(middle);
  EXPECT_NEAR(std::log10(middle->quantity), 2.5, 1e-9);
  const double margin = 2.22814 * std::sqrt(0.008) / (10.0 / 3) * std::sqrt(1 + 1.0 / 12);
  EXPECT_NEAR(std::log10(middle->high), 2.5 + margin, 1e-6);
  EXPECT_NEAR(std::log10(middle->low), 2.5 - margin, 1e-6);
  const auto mean = EstimateQuantity(*curve, 38 - 10.0 / 3 * 2.5, 3);
  EXPECT_LT(mean->high - mean->low, middle->high - middle->low);
  const auto far = EstimateQuantity(*curve, 38);
  EXPECT_GT(far->high / far->low, middle->high / middle->low);
}

TEST(StandardCurve, NeedsThreeWellsAndTwoQuantities) {
  EXPECT_FALSE(FitStandardCurve("MYC", {}));
  EXPECT_FALSE(FitStandardCurve("MYC", {standardOf(1, 30), standardOf(10, 27)}));
  EXPECT_FALSE(FitStandardCurve("MYC", {standardOf(1, 30), standardOf(1, 30), standardOf(1, 31)}));
  EXPECT_FALSE(
      FitStandardCurve("MYC", {standardOf(1, 30), standardOf(10, 27), standardOf(100, {})}));
}

TEST(StandardCurve, OfOneQuantityIsNone) {
  for (int quantity = 1; quantity < 100; ++quantity) {
    std::vector<StandardPoint> points;
    for (int well = 0; well < 60; ++well) {
      points.push_back(standardOf(quantity, 20 + 0.01 * well));
      EXPECT_FALSE(FitStandardCurve("MYC", points)) << quantity << ", wells " << well + 1;
    }
  }
}

TEST(MeasuredText, KeepsSmallNumbers) {
  EXPECT_EQ(lab::MeasuredText(1e-7), "0.0000001");
  EXPECT_EQ(lab::MeasuredText(0.0000000366123456), "0.0000000366123");
  EXPECT_EQ(lab::MeasuredText(0.1761234567), "0.176123");
  EXPECT_EQ(lab::MeasuredText(1234.5), "1234.5");
  EXPECT_EQ(lab::MeasuredText(0), "0");
}

TEST(NumberText, KeepsSmallNumbers) {
  EXPECT_EQ(lab::NumberText(1.234e-15), "0.00000000000000123");
  EXPECT_EQ(lab::NumberText(0.01234), "0.0123");
}

TEST(SmallestStep, IsThatOfDifferentValues) {
  EXPECT_EQ(lab::SmallestStep({3, 1, 1, 1.5, NAN, 3}), 0.5);
  EXPECT_EQ(lab::SmallestStep({2, 2}), 0);
  EXPECT_EQ(lab::SmallestStep({}), 0);
}

TEST(LineFit, ThroughEqualValuesHasNoScatter) {
  const std::vector<double> x = {1, 2, 3};
  const std::vector<double> y(3, 0.1 + 0.2);
  EXPECT_EQ(lab::FitLine(x, y)->rSquared, 1);
}

TEST(StandardCurve, ThatDoesNotFallHasNoEfficiencyAndNoQuantities) {
  const auto curve =
      FitStandardCurve("MYC", {standardOf(1, 20), standardOf(10, 23), standardOf(100, 26)});
  ASSERT_TRUE(curve);
  EXPECT_EQ(curve->efficiency, std::nullopt);
  EXPECT_EQ(EstimateQuantity(*curve, 25), std::nullopt);
}

TEST(LimitOfDetection, IsTheSmallestQuantityDetectedWithAllAbove) {
  std::vector<StandardPoint> points = scattered();
  points.push_back(standardOf(1, 38));
  points.push_back(standardOf(1, std::nullopt));
  EXPECT_EQ(FitStandardCurve("MYC", points)->limitOfDetection, 10);
  points.push_back(standardOf(1e3, std::nullopt));
  EXPECT_EQ(FitStandardCurve("MYC", points)->limitOfDetection, 1e4);
  points.push_back(standardOf(1e4, std::nullopt));
  EXPECT_EQ(FitStandardCurve("MYC", points)->limitOfDetection, std::nullopt);
}

CqResult wellOf(const std::string& sample, const std::string& detector, std::optional<double> cq) {
  CqResult result;
  result.curve.well.sample = sample;
  result.curve.well.detector = detector;
  result.curve.well.task = "UNKN";
  result.cq = cq;
  return result;
}

TEST(Replicates, HaveMeanAndDeviationOfThoseWithACq) {
  const std::vector<CqResult> wells = {wellOf("liver", "MYC", 24), wellOf("", "MYC", 20),
                                       wellOf("liver", "MYC", 25), wellOf("liver", "ACT", 18),
                                       wellOf("liver", "MYC", {})};
  const auto groups = lab::ReplicatesOf(wells, {});
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_EQ(groups[0].wells, (std::vector<std::size_t>{0, 2, 4}));
  EXPECT_EQ(groups[0].withCq, 2U);
  EXPECT_NEAR(*groups[0].meanCq, 24.5, 1e-12);
  EXPECT_NEAR(*groups[0].deviation, std::sqrt(0.5), 1e-12);
  EXPECT_EQ(groups[1].deviation, std::nullopt);
}

std::vector<CqResult> comparedWells() {
  return {wellOf("liver", "MYC", 24),   wellOf("liver", "MYC", 24.2), wellOf("liver", "ACT", 18),
          wellOf("liver", "ACT", 18.2), wellOf("kidney", "MYC", 22),  wellOf("kidney", "MYC", 22.2),
          wellOf("kidney", "ACT", 19),  wellOf("kidney", "ACT", 19.2)};
}

// The method of Livak: the target is 6 cycles later than the control in liver, the calibrator, and
// 3 cycles later in kidney. Kidney therefore has 2^3 times as much.
TEST(RelativeQuantity, IsTwoToTheMinusDeltaDeltaCq) {
  const auto quantities = lab::RelativeQuantitiesOf(
      comparedWells(), {}, {.calibrator = "liver", .endogenousControl = "ACT"});
  ASSERT_EQ(quantities.size(), 2U);
  EXPECT_NEAR(quantities[0].deltaCq, 6, 1e-9);
  EXPECT_NEAR(*quantities[0].ratio, 1, 1e-9);
  EXPECT_NEAR(quantities[1].deltaCq, 3, 1e-9);
  EXPECT_NEAR(*quantities[1].deltaDeltaCq, -3, 1e-9);
  EXPECT_NEAR(*quantities[1].ratio, 8, 1e-9);
  EXPECT_NEAR(*quantities[1].deviation, 0.2,
              1e-9);  // each mean is of two cycles that differ by 0.2
  EXPECT_NEAR(*quantities[1].ratioLow, std::exp2(2.8), 1e-9);
  EXPECT_NEAR(*quantities[1].ratioHigh, std::exp2(3.2), 1e-9);
  EXPECT_EQ(quantities[1].correctedRatio, std::nullopt);
}

// The method of Pfaffl: the target is 2 cycles earlier, which is 1.9^2; the control is 1 cycle
// later, which is 1.8^-1. The ratio is the first divided by the second.
TEST(RelativeQuantity, IsCorrectedByTheEfficiencies) {
  const auto detector = [](const std::string& name, double efficiency) {
    DetectorResult result;
    result.name = name;
    result.curve.emplace().efficiency = efficiency;
    return result;
  };
  const auto quantities =
      lab::RelativeQuantitiesOf(comparedWells(), {detector("MYC", 0.9), detector("ACT", 0.8)},
                                {.calibrator = "liver", .endogenousControl = "ACT"});
  EXPECT_NEAR(*quantities[1].correctedRatio, 1.9 * 1.9 * 1.8, 1e-9);
}

TEST(RelativeQuantity, NeedsTheControlAndForARatioTheCalibrator) {
  const auto with = [](const std::string& calibrator, const std::string& control) {
    return lab::RelativeQuantitiesOf(comparedWells(), {},
                                     {.calibrator = calibrator, .endogenousControl = control});
  };
  EXPECT_TRUE(with("liver", "").empty());
  EXPECT_TRUE(with("liver", "GAPDH").empty());
  ASSERT_EQ(with("spleen", "ACT").size(), 2U);
  EXPECT_EQ(with("spleen", "ACT")[0].ratio, std::nullopt);
}

}  // namespace
}  // namespace vex2::test
