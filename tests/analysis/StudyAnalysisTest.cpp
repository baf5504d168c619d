// What is analysed of a study: its plates together, although they may differ.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "lab/analysis/Cq.h"
#include "lab/analysis/Melt.h"
#include "lab/model/DocumentFile.h"
#include "lab/model/RunReader.h"
#include "lab/model/Saving.h"
#include "lab/model/Study.h"
#include "tests/analysis/AnalysedRun.h"
#include "tests/lab/ErrorOf.h"

namespace vex2::test {
namespace {

using lab::AnalyseCq;
using lab::AnalyseMelt;
using lab::CqAnalysis;
using lab::CycleRange;
using lab::Detector;
using lab::RecordingPlan;
using lab::RunReader;
using testing::Contains;
using testing::ElementsAre;

class StudyAnalysisTest : public AnalysedRunTest {
 protected:
  std::string pathOf(const std::string& name) const { return folder_ / (name + ".vex"); }

  /// Records a plate of two wells, with so many cycles; none is a plate that was not measured.
  void makePlate(const std::string& name, std::size_t cycles,
                 const std::vector<Detector>& detectors = {}) {
    RecordingPlan plan = planOf("FAM");
    plan.detectors = detectors;
    if (cycles > 0) return record(plan, cycles, pathOf(name));
    const lab::RunRecorder recorder(pathOf(name), plan);
  }

  RunReader makeStudy(const std::vector<std::string>& names) {
    lab::DocumentFile study;
    std::vector<std::string> paths;
    for (const std::string& name : names) paths.push_back(pathOf(name));
    lab::AddPlates(study, study_, paths, {}, [](const std::string&) {});
    EXPECT_EQ(study.SaveToFile(study_.c_str()), 0);
    return RunReader(study_);
  }

  static Detector detectorWith(std::uint16_t baselineStart, std::uint16_t baselineEnd,
                               float threshold) {
    Detector detector;
    detector.name = "MYC";
    detector.reporterDye = "FAM";
    detector.baselineStart = baselineStart;
    detector.baselineEnd = baselineEnd;
    detector.threshold = threshold;
    return detector;
  }

  static std::vector<std::string> findingsOf(const CqAnalysis& analysis) {
    std::vector<std::string> texts;
    for (const auto& finding : analysis.findings) {
      if (finding.problem == lab::QualityProblem::kSettingNotUsed ||
          finding.problem == lab::QualityProblem::kIncompletePlate) {
        texts.push_back(finding.text);
      }
    }
    return texts;
  }

  const std::string study_ = folder_ / "study.vex";
};

TEST_F(StudyAnalysisTest, LeavesOutAPlateWithoutFramesAndSaysSo) {
  makePlate("one", 40);
  makePlate("two", 0);
  const CqAnalysis analysis = AnalyseCq(makeStudy({"two", "one"}));
  ASSERT_EQ(analysis.wells.size(), 4U);
  EXPECT_EQ(analysis.wells[0].curve.well.plate, "two");
  EXPECT_EQ(analysis.wells[0].note, "no readings of this plate");
  EXPECT_TRUE(analysis.wells[2].cq);
  EXPECT_THAT(findingsOf(analysis),
              ElementsAre("two: is not analysed: it has no frames of readings"));
}

TEST_F(StudyAnalysisTest, WithoutAnyReadingsNamesAPlateAndWhy) {
  makePlate("one", 0);
  makePlate("two", 0);
  const RunReader study = makeStudy({"one", "two"});
  const lab::Error cq = ErrorOf([&] { static_cast<void>(AnalyseCq(study)); });
  EXPECT_EQ(cq.Class(), lab::ErrorClass::kDocument);
  EXPECT_EQ(cq.Message(),
            "cannot determine quantification cycles: no plate of the study has such readings; "
            "one: it has no frames of readings");
  const lab::Error melt = ErrorOf([&] { static_cast<void>(AnalyseMelt(study)); });
  EXPECT_EQ(melt.Class(), lab::ErrorClass::kDocument);
}

TEST_F(StudyAnalysisTest, WithoutPlatesSaysSo) {
  makePlate("one", 40);
  lab::DocumentFile study;
  lab::AddPlates(study, study_, {pathOf("one")}, {}, [](const std::string&) {});
  ASSERT_TRUE(study.RemoveRQPlate("one"));
  ASSERT_EQ(study.SaveToFile(study_.c_str()), 0);
  const lab::Error error = ErrorOf([&] { static_cast<void>(AnalyseCq(RunReader(study_))); });
  EXPECT_EQ(error.Message(), "cannot determine quantification cycles: the study has no plates");
}

TEST_F(StudyAnalysisTest, FindsTheMeltingPeaksOfThePlatesThatHaveThem) {
  makePlate("one", 12);
  recordMelting(planOf("FAM"), 100, pathOf("two"), [](std::uint16_t, std::size_t at) {
    const double temperature = 60 + 0.3 * static_cast<double>(at);
    return MeltReading{temperature, 1 + 4 / (1 + std::exp((temperature - 75) / 0.8))};
  });
  const auto curves = AnalyseMelt(makeStudy({"one", "two"}));
  ASSERT_EQ(curves.size(), 4U);
  EXPECT_TRUE(curves[0].readings.empty());
  EXPECT_EQ(curves[2].peaks.size(), 1U);
}

TEST_F(StudyAnalysisTest, TakesTheThresholdThatAnyPlateSets) {
  makePlate("one", 40);
  makePlate("two", 40, {detectorWith(6, 15, 0.5)});
  for (const auto& order : {std::vector<std::string>{"one", "two"}, {"two", "one"}}) {
    std::filesystem::remove(study_);
    const CqAnalysis analysis = AnalyseCq(makeStudy(order));
    ASSERT_EQ(analysis.detectors.size(), 1U);
    EXPECT_EQ(analysis.detectors[0].threshold, 0.5) << order[0];
    EXPECT_FALSE(analysis.detectors[0].isThresholdAutomatic);
    EXPECT_THAT(findingsOf(analysis), testing::IsEmpty());
  }
}

TEST_F(StudyAnalysisTest, SaysWhichOfTwoThresholdsIsUsed) {
  makePlate("one", 40, {detectorWith(6, 15, 0.25)});
  makePlate("two", 40, {detectorWith(6, 15, 0.5)});
  const RunReader study = makeStudy({"one", "two"});
  const CqAnalysis analysis = AnalyseCq(study);
  EXPECT_EQ(analysis.detectors[0].threshold, 0.25);
  EXPECT_THAT(findingsOf(analysis),
              Contains("MYC: the threshold 0.5 of two is not used, because one sets 0.25 for all "
                       "plates"));
  EXPECT_THAT(findingsOf(AnalyseCq(study, {.threshold = 0.3})), testing::IsEmpty());
}

TEST_F(StudyAnalysisTest, TakesTheBaselineOfEachPlate) {
  makePlate("one", 40);
  makePlate("two", 40, {detectorWith(4, 12, 0.2F)});
  for (const auto& order : {std::vector<std::string>{"one", "two"}, {"two", "one"}}) {
    std::filesystem::remove(study_);
    for (const lab::CqResult& result : AnalyseCq(makeStudy(order)).wells) {
      const bool isSet = result.baseline == CycleRange{4, 12};
      EXPECT_EQ(isSet, result.curve.well.plate == "two") << order[0];
    }
  }
}

}  // namespace
}  // namespace vex2::test
