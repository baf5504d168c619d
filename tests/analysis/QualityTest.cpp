// What a person is told to look at before using results.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
