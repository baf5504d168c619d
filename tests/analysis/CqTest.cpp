// The rules by which a quantification cycle is found, on curves of which it is known.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "tests/analysis/Curves.h"
#include "tests/lab/ErrorOf.h"

namespace vex2::test {
namespace {

using lab::AmplificationCurve;
using lab::AnalyseCurves;
using lab::CqAnalysis;
using lab::CqMethod;
using lab::CqOptions;
using lab::CqResult;
using lab::CycleRange;
using lab::Detector;
using lab::NoCq;
using testing::HasSubstr;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Level at 1 for 20 cycles, then twice as far above it in each cycle, up to 64.
AmplificationCurve doubling() {
  std::vector<double> readings(20, 1);
  for (double light = 0.5; light <= 64; light *= 2) readings.push_back(1 + light);
  readings.resize(35, 65);
  return CurveOf(std::move(readings));
}

Detector named(const std::string& name) {
  Detector detector;
  detector.name = name;
  return detector;
}

TEST(CqThreshold, IsInterpolatedOnTheLogarithm) {
  const CqResult result = ResultOf(doubling(), {.threshold = 2 * std::sqrt(2)});
  ASSERT_TRUE(result.cq);
  EXPECT_NEAR(*result.cq, 23.5, 1e-9);  // half-way from 2, in cycle 23, to 4
  EXPECT_NEAR(*ResultOf(doubling(), {.threshold = 4}).cq, 24, 1e-9);
}

TEST(CqThreshold, IsInterpolatedOnALineFromZero) {
  std::vector<double> readings(20, 1);
  readings.resize(40, 11);
  EXPECT_NEAR(*ResultOf(CurveOf(readings), {.threshold = 4}).cq, 20.4, 1e-9);
}

TEST(CqThreshold, IsTheLastCrossingBeforeTheTop) {
  AmplificationCurve curve = doubling();
  curve.readings[15] = 40;  // a bubble
  const CqResult result = ResultOf(curve, {.threshold = 4, .baseline = CycleRange{3, 12}});
  EXPECT_NEAR(*result.cq, 24, 1e-9);
}

TEST(CqSdm, IsWhereALogisticCurveBendsMost) {
  std::vector<double> readings;
  constexpr double kRate = 0.6;
  for (int cycle = 1; cycle <= 40; ++cycle) {
    readings.push_back(1 + 10 / (1 + std::exp(-kRate * (cycle - 24.3))));
  }
  const CqResult result = ResultOf(CurveOf(readings), {.method = CqMethod::kSecondDerivative});
  ASSERT_TRUE(result.cq);
  // Smoothing over five cycles moves it a third of a cycle ahead, in all curves of this rate.
  EXPECT_NEAR(*result.cq, 24.3 - std::log(2 + std::sqrt(3)) / kRate - 0.33, 0.05);
  EXPECT_EQ(result.cq, result.secondDerivativeCq);
}

TEST(CqSdm, DoesNotDependOnUnitAndOffset) {
  const AmplificationCurve curve = Measured({});
  AmplificationCurve scaled = curve;
  for (double& reading : scaled.readings) reading = 3000 + 1000 * reading;
  const CqOptions options{.method = CqMethod::kSecondDerivative};
  EXPECT_NEAR(*ResultOf(curve, options).cq, *ResultOf(scaled, options).cq, 1e-6);
  EXPECT_NEAR(*ResultOf(curve).cq, *ResultOf(scaled).cq, 1e-6);
}

TEST(NoCq, OfALevelCurveIsNoRise) {
  const CqResult level = ResultOf(CurveOf(std::vector<double>(40, 2.5)));
  EXPECT_EQ(level.reason, NoCq::kNoRise);
  EXPECT_EQ(level.cq, std::nullopt);
  const CqAnalysis analysis = AnalyseCurves(
      {Measured({}), Measured({.copies = 0}, 2), Measured({.brightness = 0.3}, 3)}, {});
  EXPECT_TRUE(analysis.wells[0].cq);
  for (const std::size_t well : {1U, 2U}) {
    EXPECT_EQ(analysis.wells[well].cq, std::nullopt);
    EXPECT_EQ(lab::NameOf(*analysis.wells[well].reason), "no rise");
    EXPECT_THAT(analysis.wells[well].note, HasSubstr("no rise"));
    EXPECT_EQ(analysis.wells[well].baseline, (CycleRange{3, 40}));
  }
}

TEST(NoCq, OfACurveWithinItsNoiseIsNoisy) {
  const CqResult result = ResultOf(Measured({.brightness = 0.5, .noise = 0.1}));
  EXPECT_EQ(result.reason, NoCq::kNoisy);
  EXPECT_THAT(result.note, HasSubstr("10 times the noise"));
}

TEST(NoCq, OfACurveBelowTheThresholdIsLate) {
  const CqResult result = ResultOf(doubling(), {.threshold = 70});
  EXPECT_EQ(result.reason, NoCq::kLate);
  EXPECT_EQ(result.note, "late: does not reach the threshold 70 by cycle 35");
  const CqResult rising = ResultOf(Measured({.copies = 1}, 1, 34),
                                   {.method = CqMethod::kSecondDerivative, .threshold = 1});
  EXPECT_EQ(rising.reason, NoCq::kLate);
  EXPECT_THAT(rising.note, HasSubstr("still accelerating"));
}

TEST(NoCq, OfACurveAboveTheThresholdFromTheBeginIsEarly) {
  // The baseline that was asked for lies behind the product, and below the begin.
  std::vector<double> readings(20, 10);
  for (double light = 60; light > 5; light -= 5) readings.push_back(light);
  readings.resize(40, 5);
  const CqResult early =
      ResultOf(CurveOf(readings), {.threshold = 4, .baseline = CycleRange{33, 40}});
  EXPECT_EQ(early.reason, NoCq::kEarly) << early.note;
  EXPECT_EQ(early.note, "early: above the threshold from the first cycle on");
}

TEST(NoCq, OfFewerThanTenCyclesIsTooFewCycles) {
  EXPECT_EQ(ResultOf(CurveOf({1})).reason, NoCq::kTooFewCycles);
  EXPECT_EQ(ResultOf(CurveOf(std::vector<double>(9, 1))).reason, NoCq::kTooFewCycles);
  EXPECT_EQ(ResultOf(CurveOf(std::vector<double>(10, 1))).reason, NoCq::kNoRise);
  EXPECT_EQ(ResultOf(CurveOf(std::vector<double>(40, kNaN))).reason, NoCq::kTooFewCycles);
}

TEST(NoCq, WithoutReadingsNamesTheDye) {
  AmplificationCurve curve = CurveOf({});
  curve.reporter = "FAM";
  EXPECT_EQ(ResultOf(curve).reason, NoCq::kNoReadings);
  EXPECT_EQ(ResultOf(curve).note, "no readings of the dye FAM");
}

TEST(Baseline, OfTheDetectorIsUsedWhereSomebodySetIt) {
  Detector detector = named("MYC");
  EXPECT_NE(ResultOf(doubling(), {}, {detector}).baseline, (CycleRange{6, 15}));
  detector.baselineStart = 4;
  EXPECT_EQ(ResultOf(doubling(), {}, {detector}).baseline, (CycleRange{4, 15}));
  detector.autoBaseline = true;
  EXPECT_NE(ResultOf(doubling(), {}, {detector}).baseline, (CycleRange{4, 15}));
  EXPECT_EQ(ResultOf(doubling(), {.baseline = CycleRange{2, 9}}, {detector}).baseline,
            (CycleRange{2, 9}));
}

TEST(Baseline, ThatIsFoundEndsEightCyclesBeforeTheTakeOff) {
  const CqResult result = ResultOf(Measured({}));
  ASSERT_TRUE(result.baseline && result.secondDerivativeCq);
  EXPECT_EQ(result.baseline->first, 3);
  EXPECT_EQ(result.baseline->last, std::floor(*result.secondDerivativeCq) - 8);
}

TEST(Baseline, RemovesALine) {
  AmplificationCurve curve = doubling();
  for (std::size_t i = 0; i < curve.readings.size(); ++i) {
    curve.readings[i] += 0.25 * curve.cycles[i];
  }
  const CqResult result = ResultOf(curve, {.threshold = 4, .baseline = CycleRange{3, 18}});
  EXPECT_NEAR(result.baselineSlope, 0.25, 1e-9);
  EXPECT_NEAR(result.baselineIntercept, 1, 1e-9);
  EXPECT_NEAR(*result.cq, 24, 1e-6);
  EXPECT_NEAR(result.corrected[25], curve.readings[25] - 1 - 0.25 * 26, 1e-9);
}

TEST(Baseline, OfFewerThanEightCyclesIsLevel) {
  AmplificationCurve curve = doubling();
  curve.readings[4] = 4;
  const CqResult result = ResultOf(curve, {.baseline = CycleRange{3, 5}});
  EXPECT_EQ(result.baselineSlope, 0);
  EXPECT_NEAR(result.baselineIntercept, 2, 1e-9);
  EXPECT_EQ(ResultOf(curve, {.baseline = CycleRange{3, 9}}).baselineSlope, 0);
  EXPECT_NE(ResultOf(curve, {.baseline = CycleRange{3, 10}}).baselineSlope, 0);
}

TEST(Threshold, IsThatOfTheDetectorWhereSomebodySetIt) {
  Detector detector = named("MYC");
  EXPECT_TRUE(AnalyseCurves({doubling()}, {detector}).detectors[0].isThresholdAutomatic);
  detector.threshold = 3;
  EXPECT_EQ(ResultOf(doubling(), {}, {detector}).threshold, 3);
  EXPECT_EQ(ResultOf(doubling(), {.threshold = 5}, {detector}).threshold, 5);
  detector.autoThreshold = true;
  EXPECT_NE(ResultOf(doubling(), {}, {detector}).threshold, 3);
}

TEST(Threshold, ThatIsNoNumberAboveZeroIsNotUsed) {
  Detector detector = named("MYC");
  for (const float threshold : {std::numeric_limits<float>::quiet_NaN(),
                                std::numeric_limits<float>::infinity(), 0.0F, -1.0F}) {
    detector.threshold = threshold;
    const CqAnalysis analysis = AnalyseCurves({doubling()}, {detector});
    EXPECT_TRUE(analysis.detectors[0].isThresholdAutomatic);
    EXPECT_TRUE(analysis.wells[0].cq);
  }
}

TEST(Threshold, ThatIsAutomaticIsOneForAllWellsOfADetector) {
  std::vector<AmplificationCurve> curves;
  for (const double brightness : {4.0, 8.0, 20.0}) {
    curves.push_back(Measured({.brightness = brightness, .noise = 0}));
  }
  curves.push_back(Measured({.brightness = 8, .noise = 0}));
  curves.back().well.detector = "ACT";
  const CqAnalysis analysis = AnalyseCurves(curves, {});
  ASSERT_EQ(analysis.detectors.size(), 2U);
  EXPECT_EQ(analysis.wells[0].threshold, analysis.wells[2].threshold);
  // The median is that of the curve in the middle, at whose take-off it lies.
  EXPECT_NEAR(*analysis.wells[1].cq, *analysis.wells[1].secondDerivativeCq, 0.1);
  EXPECT_NEAR(*analysis.Find("ACT")->threshold, *analysis.Find("MYC")->threshold, 0.02);
  EXPECT_EQ(analysis.Find("none"), nullptr);
}

TEST(Threshold, DoesNotDependOnControlsThatRise) {
  std::vector<AmplificationCurve> curves = {Measured({}), Measured({.brightness = 60}, 2)};
  curves[1].well.task = "NTC";
  EXPECT_EQ(AnalyseCurves(curves, {}).detectors[0].threshold,
            AnalyseCurves({curves[0]}, {}).detectors[0].threshold);
  EXPECT_TRUE(AnalyseCurves({curves[1]}, {}).detectors[0].threshold);
}

TEST(MissingReadings, AreFilledOnALine) {
  AmplificationCurve curve = doubling();
  const double cq = *ResultOf(curve, {.threshold = 8}).cq;
  for (const std::size_t cycle : {0U, 8U, 9U, 34U}) curve.readings[cycle] = kNaN;
  const CqResult result = ResultOf(curve, {.threshold = 8});
  EXPECT_NEAR(*result.cq, cq, 1e-9);
  EXPECT_EQ(result.note, "2 missing readings filled in");  // those between others
  EXPECT_TRUE(std::isnan(result.corrected[8]));
}

TEST(CqOptions, ThatCannotBeAreRefused) {
  const auto messageOf = [](const CqOptions& options) {
    const lab::Error error = ErrorOf([&] { AnalyseCurves({doubling()}, {}, options); });
    EXPECT_EQ(error.Class(), lab::ErrorClass::kUsage);
    return error.Message();
  };
  EXPECT_EQ(messageOf({.threshold = 0}), "the threshold must be a number above 0");
  EXPECT_EQ(messageOf({.threshold = kNaN}), "the threshold must be a number above 0");
  EXPECT_EQ(messageOf({.baseline = CycleRange{34, 60}}),
            "the baseline 34-60 has fewer than three cycles of the run");
  EXPECT_EQ(messageOf({.detector = "ACT"}), "no well has a detector 'ACT'");
}

TEST(CqOptions, OfADetectorLeaveOutTheOthers) {
  AmplificationCurve other = doubling();
  other.well.detector = "ACT";
  const CqAnalysis analysis = AnalyseCurves({doubling(), other}, {}, {.detector = "ACT"});
  ASSERT_EQ(analysis.wells.size(), 1U);
  EXPECT_EQ(analysis.wells[0].curve.well.detector, "ACT");
}

// Eight wells at each of five quantities, ten times apart.
std::vector<AmplificationCurve> series(double efficiency) {
  std::vector<AmplificationCurve> curves;
  std::uint16_t number = 0;
  for (double copies = 1e6; copies >= 1e2; copies /= 10) {
    for (int replicate = 0; replicate < 8; ++replicate) {
      curves.push_back(Measured({.copies = copies, .efficiency = efficiency}, ++number, 45));
      curves.back().well.task = "STND";
      curves.back().well.quantity = copies;
    }
  }
  return curves;
}

// The efficiency of the simulated growth falls as the plateau comes near, so what is known is the
// cycle at which the light without noise reaches the same threshold.
TEST(SimulatedSeries, IsRecoveredWithinATenthOfACycle) {
  for (const double efficiency : {0.8, 0.9, 1.0}) {
    const CqAnalysis analysis = AnalyseCurves(series(efficiency), {});
    std::size_t far = 0;
    for (const CqResult& result : analysis.wells) {
      ASSERT_TRUE(result.cq) << result.note;
      const double known = TrueCq({.copies = *result.curve.well.quantity, .efficiency = efficiency},
                                  *result.threshold);
      if (std::fabs(*result.cq - known) > 0.1) ++far;
    }
    EXPECT_EQ(far, 0U) << efficiency;
  }
}

TEST(SimulatedSeries, HasItsEfficiencyWithinTwoPercentByBothMethods) {
  for (const CqMethod method : {CqMethod::kThreshold, CqMethod::kSecondDerivative}) {
    for (const double efficiency : {0.8, 0.9, 1.0}) {
      const CqAnalysis analysis = AnalyseCurves(series(efficiency), {}, {.method = method});
      const auto& curve = analysis.detectors.at(0).curve;
      ASSERT_TRUE(curve && curve->efficiency);
      EXPECT_NEAR(*curve->efficiency, efficiency, 0.02) << lab::NameOf(method);
      EXPECT_GT(curve->rSquared, 0.999);
    }
  }
}

// A tenth of a cycle is 7 % of the copies.
TEST(SimulatedSeries, GivesTheCopiesOfUnknownsWithinTheirIntervals) {
  std::vector<AmplificationCurve> curves = series(0.9);
  std::uint16_t number = 100;
  for (const double copies : {3e2, 5e3, 2e5}) {
    curves.push_back(Measured({.copies = copies, .efficiency = 0.9}, ++number, 45));
    curves.back().well.sample = std::to_string(copies);
  }
  const CqAnalysis analysis = AnalyseCurves(curves, {});
  for (std::size_t i = curves.size() - 3; i < curves.size(); ++i) {
    const CqResult& result = analysis.wells[i];
    const double copies = std::stod(result.curve.well.sample);
    ASSERT_TRUE(result.estimate);
    EXPECT_NEAR(result.estimate->quantity / copies, 1, 0.07);
    EXPECT_LT(result.estimate->low, copies);
    EXPECT_GT(result.estimate->high, copies);
  }
}

}  // namespace
}  // namespace vex2::test
