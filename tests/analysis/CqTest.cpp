// Tests the rules for quantification cycles on curves whose cycle is known.
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

// A curve that is level at 1 for 20 cycles; then its distance from 1 doubles in each cycle, up to
// 64.
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
  EXPECT_NEAR(*result.cq, 23.5,
              1e-9);  // on the logarithm, half-way between 2 (cycle 23) and 4 (cycle 24)
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
  // Smoothing over five cycles makes the cycle 0.33 earlier for all curves of this rate.
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

TEST(NoCq, OfACurveAboveTheThresholdFromTheStartIsEarly) {
  // The given baseline is after the product, and below the begin of the curve.
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
}

TEST(NoCq, OfACurveWithoutAReadingIsNoReadings) {
  const CqResult missing = ResultOf(CurveOf(std::vector<double>(40, kNaN)));
  EXPECT_EQ(missing.reason, NoCq::kNoReadings);
  EXPECT_EQ(missing.note, "no readings: all 40 are missing");
  AmplificationCurve few = CurveOf(std::vector<double>(40, kNaN));
  few.readings[7] = 1;
  EXPECT_EQ(ResultOf(few).reason, NoCq::kTooFewCycles);
}

TEST(NoCq, WithoutReadingsNamesTheDye) {
  AmplificationCurve curve = CurveOf({});
  curve.reporter = "FAM";
  EXPECT_EQ(ResultOf(curve).reason, NoCq::kNoReadings);
  EXPECT_EQ(ResultOf(curve).note, "no readings of the dye FAM");
}

TEST(Baseline, OfTheDetectorIsUsedIfItIsSet) {
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
  curve.readings[3] = curve.readings[4] =
      2.5;  // two adjacent cycles, so that neither counts as an outlier
  curve.readings[5] = 2.5;
  const CqResult result = ResultOf(curve, {.baseline = CycleRange{3, 5}});
  EXPECT_EQ(result.baselineSlope, 0);
  EXPECT_NEAR(result.baselineIntercept, 2, 1e-9);
  EXPECT_EQ(ResultOf(curve, {.baseline = CycleRange{3, 9}}).baselineSlope, 0);
  EXPECT_NE(ResultOf(curve, {.baseline = CycleRange{3, 10}}).baselineSlope, 0);
}

TEST(Threshold, IsThatOfTheDetectorIfItIsSet) {
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
  // The threshold is the median: the fluorescence at which the middle curve takes off.
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
  EXPECT_EQ(result.note, "2 missing readings filled in");  // those at the ends are left out
  EXPECT_TRUE(std::isnan(result.corrected[8]));
}

void leaveOut(AmplificationCurve& curve, std::size_t first, std::size_t count) {
  const auto from = static_cast<std::ptrdiff_t>(first);
  const auto end = static_cast<std::ptrdiff_t>(first + count);
  curve.cycles.erase(curve.cycles.begin() + from, curve.cycles.begin() + end);
  curve.readings.erase(curve.readings.begin() + from, curve.readings.begin() + end);
}

TEST(MissingCycles, AreFilledLikeMissingReadings) {
  for (std::size_t first = 10; first < 30; ++first) {
    for (const std::size_t count : {1U, 2U}) {
      AmplificationCurve marked = Measured({});
      AmplificationCurve shorter = marked;
      for (std::size_t i = first; i < first + count; ++i) marked.readings[i] = kNaN;
      leaveOut(shorter, first, count);
      for (const CqMethod method : {CqMethod::kThreshold, CqMethod::kSecondDerivative}) {
        const CqResult wanted = ResultOf(marked, {.method = method});
        const CqResult found = ResultOf(shorter, {.method = method});
        ASSERT_TRUE(found.cq && wanted.cq) << first;
        EXPECT_NEAR(*found.cq, *wanted.cq, 1e-9) << first;
        EXPECT_EQ(found.note, wanted.note);
        EXPECT_THAT(found.note, HasSubstr("filled in"));
      }
    }
  }
}

TEST(MissingCycles, WhereTheCurveTakesOffMakeTheCqUncertain) {
  AmplificationCurve curve = Measured({});
  const auto takeOff = static_cast<std::size_t>(*ResultOf(curve).secondDerivativeCq);
  AmplificationCurve before = curve;
  leaveOut(curve, takeOff, 1);
  EXPECT_THAT(ResultOf(curve).note, HasSubstr("uncertain"));
  leaveOut(before, 8, 1);
  EXPECT_EQ(ResultOf(before).note, "1 missing reading filled in");
}

TEST(MissingCycles, OfEveryOtherCycleAreNone) {
  std::vector<AmplificationCurve> curves = {Measured({})};
  for (std::size_t i = 1; i < curves[0].cycles.size(); ++i) leaveOut(curves[0], i, 1);
  EXPECT_EQ(ResultOf(curves[0]).note, "");
}

TEST(MissingCycles, ThatAreMostOfThemGiveNoCq) {
  AmplificationCurve curve = doubling();
  curve.cycles.back() = 65535;
  EXPECT_EQ(ResultOf(curve).reason, NoCq::kTooFewCycles);
  EXPECT_EQ(ResultOf(curve).note, "too few cycles: most of the cycles from 1 to 65535 are missing");
}

TEST(Outlier, GivesAControlNoCq) {
  for (const double height : {0.3, 1.0, 8.0}) {
    for (const std::size_t bubbles : {1U, 2U}) {
      AmplificationCurve control = Measured({.copies = 0});
      for (std::size_t i = 0; i < bubbles; ++i) control.readings[20 + i] += height;
      for (const CqMethod method : {CqMethod::kThreshold, CqMethod::kSecondDerivative}) {
        EXPECT_EQ(ResultOf(control, {.method = method}).cq, std::nullopt) << height;
      }
    }
  }
}

TEST(Outlier, AtTheEndIsNoRise) {
  AmplificationCurve control = Measured({.copies = 0});
  control.readings.back() += 2;
  const CqAnalysis analysis = AnalyseCurves({Measured({}, 2), control}, {});
  EXPECT_EQ(analysis.wells[1].reason, NoCq::kNoRise);
}

TEST(Outlier, DoesNotMoveTheCq) {
  const AmplificationCurve curve = Measured({});
  for (const CqMethod method : {CqMethod::kThreshold, CqMethod::kSecondDerivative}) {
    const double cq = *ResultOf(curve, {.method = method}).cq;
    const std::vector<std::pair<std::size_t, double>> changes = {{8, -2}, {8, -0.8},  {8, 2.5},
                                                                 {8, 4},  {36, -2.5}, {38, -2.5}};
    for (const auto& [cycle, change] : changes) {
      AmplificationCurve spoilt = curve;
      spoilt.readings[cycle] += change;
      const CqResult result = ResultOf(spoilt, {.method = method});
      ASSERT_TRUE(result.cq) << cycle << " " << change << " " << result.note;
      EXPECT_NEAR(*result.cq, cq, 0.1) << cycle << " " << change;
      EXPECT_EQ(result.note, "1 outlier left out");
    }
  }
}

TEST(Outlier, IsNoReadingOfAGoodCurve) {
  for (std::uint16_t number = 1; number <= 200; ++number) {
    const double copies = std::pow(10, number % 8);
    const CqResult result = ResultOf(Measured({.copies = copies}, number));
    EXPECT_EQ(result.outliers, 0U) << number;
  }
}

// By chance, the three readings of a short baseline are close together in one of twenty wells.
TEST(Noise, OfAShortBaselineIsAtLeastThatOfTheReadings) {
  std::vector<AmplificationCurve> controls;
  for (std::uint16_t number = 1; number <= 2000; ++number) {
    controls.push_back(Measured({.copies = 0, .drift = 0}, number));
  }
  for (const CqMethod method : {CqMethod::kThreshold, CqMethod::kSecondDerivative}) {
    std::size_t risen = 0;
    for (const CqResult& result : AnalyseCurves(controls, {}, {.method = method}).wells) {
      const bool isShort = result.baseline->last - result.baseline->first + 1 < lab::kFewestForLine;
      risen += result.cq && isShort;
    }
    EXPECT_EQ(risen, 0U) << lab::NameOf(method);
  }
}

// A line through eight cycles of noise can climb far above the noise in thirty more.
TEST(Noise, OfALineThroughFewCyclesMakesNoRise) {
  for (const std::size_t cycles : {30U, 50U}) {
    std::vector<AmplificationCurve> controls;
    for (std::uint16_t number = 1; number <= 3000; ++number) {
      controls.push_back(Measured({.copies = 0, .drift = 0}, number, cycles));
    }
    bool isTold = false;
    for (const CqResult& result : AnalyseCurves(controls, {}).wells) {
      EXPECT_EQ(result.cq, std::nullopt) << result.curve.well.name;
      isTold =
          isTold || result.note.find("7 times what the line through cycles") != std::string::npos;
    }
    EXPECT_TRUE(isTold) << cycles;
  }
}

TEST(Noise, OfALineThroughFewCyclesLosesNoFaintProduct) {
  for (std::uint16_t number = 1; number <= 200; ++number) {
    const CqResult result =
        ResultOf(Measured({.copies = 2e6, .brightness = 0.5, .drift = 0}, number));
    EXPECT_TRUE(result.cq) << number << " " << result.note;
  }
}

TEST(EarlyCurve, SaysThatItIsEarlyOrMayBeLate) {
  for (const double copies : {1e10, 5e9, 3e9}) {
    const CqResult result = ResultOf(Measured({.copies = copies}));
    EXPECT_EQ(result.reason, NoCq::kEarly) << copies << " " << result.note;
    EXPECT_THAT(result.note, HasSubstr("early: ")) << copies;
  }
  const CqResult late = ResultOf(Measured({.copies = 1e8}));
  ASSERT_TRUE(late.cq) << late.note;
  EXPECT_THAT(late.note, HasSubstr("the cycle may be late"));
}

TEST(EarlyCurve, HasNoSdmCycleAtTheEdgeOfTheSearch) {
  std::vector<double> readings;
  for (int cycle = 1; cycle <= 40; ++cycle) {
    readings.push_back(1 + 10 / (1 + std::exp(-0.7 * (cycle - 5.5))));
  }
  const CqResult result = ResultOf(
      CurveOf(readings), {.method = CqMethod::kSecondDerivative, .baseline = CycleRange{1, 3}});
  EXPECT_EQ(result.reason, NoCq::kEarly) << result.cq.value_or(0);
}

TEST(Baseline, ThatIsSetIntoTheRiseIsSaid) {
  const CqResult result = ResultOf(Measured({}), {.baseline = CycleRange{5, 34}});
  EXPECT_EQ(result.cq, std::nullopt);
  EXPECT_EQ(result.baseline, (CycleRange{5, 34}));
  EXPECT_THAT(result.note, HasSubstr("the set baseline 5-34 reaches into the rise"));
  const CqResult level = ResultOf(Measured({.copies = 0}), {.baseline = CycleRange{5, 34}});
  EXPECT_THAT(level.note, testing::Not(HasSubstr("reaches into")));
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

TEST(CqOptions, OfADetectorDoNotChangeItsResults) {
  AmplificationCurve faint = Measured({.brightness = 0.3}, 2);
  faint.well.detector = "ACT";
  const CqAnalysis both = AnalyseCurves({Measured({}), faint}, {});
  const CqAnalysis one = AnalyseCurves({Measured({}), faint}, {}, {.detector = "ACT"});
  EXPECT_EQ(both.wells[1].reason, NoCq::kNoRise);
  EXPECT_EQ(one.wells[0].reason, NoCq::kNoRise);
  EXPECT_EQ(one.wells[0].note, both.wells[1].note);
}

// Curves of eight wells at each of five quantities; each quantity is ten times the previous one.
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

// The efficiency of the simulated growth falls near the plateau, so the tests compare with the
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

// An error of a tenth of a cycle is an error of 7 % in the copies.
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
