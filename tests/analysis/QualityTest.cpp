// Tests the findings that a person should look at before using results.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "tests/analysis/Curves.h"

namespace vex2::test {
namespace {

using lab::AmplificationCurve;
using lab::CqAnalysis;
using lab::QualityProblem;
using testing::ElementsAre;
using testing::HasSubstr;

std::vector<std::string> findingsOf(const std::vector<AmplificationCurve>& curves,
                                    QualityProblem problem) {
  std::vector<std::string> texts;
  for (const auto& finding : lab::AnalyseCurves(curves, {}).findings) {
    if (finding.problem == problem) texts.push_back(finding.text);
  }
  return texts;
}

AmplificationCurve sampleCurve(const Growth& growth, std::uint16_t number) {
  AmplificationCurve curve = Measured(growth, number);
  curve.well.sample = "liver";
  return curve;
}

TEST(Quality, OfGoodReplicatesHasNoFinding) {
  const CqAnalysis analysis =
      lab::AnalyseCurves({sampleCurve({}, 1), sampleCurve({}, 2), sampleCurve({}, 3)}, {});
  EXPECT_TRUE(analysis.findings.empty()) << analysis.findings.front().text;
}

TEST(Quality, NamesTheReplicateThatDiffers) {
  const auto texts =
      findingsOf({sampleCurve({}, 1), sampleCurve({}, 2), sampleCurve({.copies = 400}, 3)},
                 QualityProblem::kReplicateDiffers);
  ASSERT_EQ(texts.size(), 1U);
  EXPECT_THAT(texts[0], testing::MatchesRegex(
                            "A3: Cq [0-9.]+ differs by 1\\.[0-9]+ cycles from its replicates A1, "
                            "A2, Cq [0-9.]+"));
}

TEST(Quality, NamesTheReplicateWithoutACq) {
  EXPECT_THAT(findingsOf({sampleCurve({}, 1), sampleCurve({.copies = 0}, 2)},
                         QualityProblem::kReplicateDiffers),
              ElementsAre(HasSubstr("A2: has no Cq (no rise")));
}

TEST(Quality, NamesOnlyReplicatesWithACq) {
  const auto lost = [](std::uint16_t number) { return sampleCurve({.copies = 0}, number); };
  EXPECT_THAT(findingsOf({sampleCurve({}, 1), lost(2), lost(3)}, QualityProblem::kReplicateDiffers),
              ElementsAre(testing::EndsWith("but its replicate A1 has"),
                          testing::EndsWith("but its replicate A1 has")));
  EXPECT_THAT(findingsOf({sampleCurve({}, 1), lost(2), sampleCurve({}, 3)},
                         QualityProblem::kReplicateDiffers),
              ElementsAre(testing::EndsWith("but its replicates A1, A3 have")));
  EXPECT_THAT(findingsOf({sampleCurve({}, 1), sampleCurve({.copies = 20}, 2), lost(3)},
                         QualityProblem::kReplicateDiffers),
              testing::Contains(testing::ContainsRegex("A2: .* from its replicate A1, Cq")));
}

TEST(Quality, OfManyReplicatesTakesNoLongerThanTheirNumberAsksFor) {
  std::vector<AmplificationCurve> curves(60000, sampleCurve({}, 1));
  const AmplificationCurve level = CurveOf(std::vector<double>(40, 1));
  for (std::size_t i = 0; i < curves.size(); i += 2) curves[i].readings = level.readings;
  const auto begun = std::chrono::steady_clock::now();
  const auto texts = findingsOf(curves, QualityProblem::kReplicateDiffers);
  EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(60));
  ASSERT_EQ(texts.size(), curves.size() / 2);
  EXPECT_THAT(texts[0], testing::EndsWith(" and 29992 more have"));
}

TEST(Quality, NamesOutlierReadings) {
  AmplificationCurve curve = sampleCurve({}, 1);
  curve.readings[8] += 3;
  EXPECT_THAT(findingsOf({curve}, QualityProblem::kOutlier),
              ElementsAre(HasSubstr("A1: 1 reading lies far beside")));
  curve.readings[30] -= 3;
  EXPECT_THAT(findingsOf({curve}, QualityProblem::kOutlier),
              ElementsAre(testing::ContainsRegex("A1: 2 readings lie .*, and were left out")));
}

TEST(Quality, CountsCyclesWithoutAFrameAsMissing) {
  AmplificationCurve curve = sampleCurve({}, 1);
  curve.readings.erase(curve.readings.begin() + 12);
  curve.cycles.erase(curve.cycles.begin() + 12);
  EXPECT_THAT(findingsOf({curve}, QualityProblem::kMissingReadings),
              ElementsAre("A1: 1 of 40 readings are missing"));
}

TEST(Quality, NamesAControlThatRises) {
  AmplificationCurve control = sampleCurve({.copies = 10}, 2);
  control.well.task = "NTC";
  EXPECT_THAT(findingsOf({sampleCurve({}, 1), control}, QualityProblem::kControlRises),
              ElementsAre(HasSubstr("cycles after the last sample")));
  control.readings = Measured({.copies = 1e5}, 2).readings;
  EXPECT_THAT(findingsOf({sampleCurve({}, 1), control}, QualityProblem::kControlRises),
              ElementsAre(HasSubstr("cycles before the last sample")));
}

TEST(Quality, NamesReadingsAtTheLimit) {
  AmplificationCurve curve = sampleCurve({}, 1);
  curve.atStoredLimit = 4;
  EXPECT_THAT(findingsOf({curve}, QualityProblem::kSaturated),
              ElementsAre(HasSubstr("A1: 4 readings are at the largest number")));
  curve.atStoredLimit = 0;
  for (double& reading : curve.readings) reading = std::min(reading, 5.0);
  EXPECT_THAT(findingsOf({curve}, QualityProblem::kSaturated),
              ElementsAre("A1: stays at the largest reading of the run, 5: the detector may be "
                          "saturated"));
}

// Simulated readings, or those of a coarse scale, are equal without a limit.
TEST(Quality, OfAPlateauWithoutNoiseIsNotSaturated) {
  for (const double step : {0.001, 0.01}) {
    AmplificationCurve curve = Measured({});
    for (std::size_t i = 0; i < curve.readings.size(); ++i) {
      curve.readings[i] = 0.5 + LightOf({}, 40)[i + 1];
      curve.readings[i] = step * std::round(curve.readings[i] / step);
    }
    std::fill(curve.readings.end() - 5, curve.readings.end(), curve.readings.back());
    EXPECT_THAT(findingsOf({curve}, QualityProblem::kSaturated), testing::IsEmpty()) << step;
  }
}

AmplificationCurve standard(double quantity, std::uint16_t number, double copies = 1000) {
  AmplificationCurve curve = Measured({.copies = copies}, number);
  curve.well.task = "STND";
  curve.well.quantity = quantity;
  return curve;
}

TEST(Quality, SaysWhyStandardsMakeNoCurve) {
  const auto whyOf = [](const std::vector<AmplificationCurve>& curves) {
    return findingsOf(curves, QualityProblem::kNoStandardCurve);
  };
  EXPECT_THAT(whyOf({standard(1e3, 1), standard(1e4, 2, 1e4)}),
              ElementsAre("MYC: has no standard curve: only 2 standards have a Cq, and three are "
                          "needed"));
  EXPECT_THAT(whyOf({standard(8, 1), standard(8, 2), standard(8, 3)}),
              ElementsAre("MYC: has no standard curve: all standards with a Cq have the quantity "
                          "8, and two quantities are needed"));
  EXPECT_THAT(whyOf({standard(8, 1), standard(80, 2, 0)}),
              ElementsAre("MYC: has no standard curve: the only standard with a Cq has the "
                          "quantity 8, and two quantities are needed"));
  EXPECT_THAT(whyOf({standard(8, 1, 0), standard(80, 2, 0)}),
              ElementsAre("MYC: has no standard curve: no standard has a Cq"));
  EXPECT_THAT(whyOf({standard(0, 1), standard(0, 2)}),
              ElementsAre("MYC: has no standard curve: no standard has a quantity above 0"));
  EXPECT_THAT(whyOf({standard(1e3, 1, 1e5), standard(1e4, 2, 1e4), standard(1e5, 3, 1e3)}),
              ElementsAre("MYC: no quantity is read off the standard curve, because it does not "
                          "fall"));
  EXPECT_THAT(
      whyOf({standard(1e3, 1, 1e3), standard(1e4, 2, 1e4), standard(1e5, 3, 1e5), standard(0, 4)}),
      ElementsAre("MYC: 1 standard has no quantity above 0: A4"));
  EXPECT_THAT(whyOf({sampleCurve({}, 1)}), testing::IsEmpty());
}

TEST(Quality, NamesADriftingBaseline) {
  EXPECT_THAT(findingsOf({sampleCurve({.drift = 0.1}, 1), sampleCurve({}, 2)},
                         QualityProblem::kDriftingBaseline),
              ElementsAre(HasSubstr("A1: the baseline rises by")));
}

TEST(Quality, NamesMissingReadings) {
  AmplificationCurve curve = sampleCurve({}, 1);
  curve.readings[3] = curve.readings[4] = NAN;
  EXPECT_THAT(findingsOf({curve}, QualityProblem::kMissingReadings),
              ElementsAre("A1: 2 of 40 readings are missing"));
}

}  // namespace
}  // namespace vex2::test
