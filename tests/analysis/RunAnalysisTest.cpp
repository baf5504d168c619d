// Tests which parts of a document are analysed, and the errors for documents that cannot be
// analysed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <numeric>

#include "lab/analysis/Cq.h"
#include "lab/analysis/CqStorage.h"
#include "lab/analysis/Melt.h"
#include "lab/model/RunLog.h"
#include "lab/record/RunRecorder.h"
#include "tests/analysis/Curves.h"
#include "tests/lab/ErrorOf.h"
#include "tests/lab/RunDocuments.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::test {
namespace {

using lab::AnalyseCq;
using lab::AnalyseMelt;
using lab::CqAnalysis;
using lab::NoCq;
using lab::RecordingPlan;
using lab::RunReader;
using testing::HasSubstr;

class RunAnalysisTest : public TempFolderTest {
 protected:
  /// A plan of two wells, each with a detector of this reporter.
  static RecordingPlan planOf(const std::string& reporter) {
    RecordingPlan plan;
    for (std::uint16_t number = 1; number <= 2; ++number) {
      plan.plate.wells.push_back({.number = number,
                                  .name = {},
                                  .sample = "liver",
                                  .targets = {{"MYC", "UNKN", {}, reporter}}});
    }
    plan.scale = lab::ReadingScale(1000);
    return plan;
  }

  /// Records a simulated curve in each well. The curve in channel c (from 0) starts with 10^(c + 2)
  /// copies.
  void record(const RecordingPlan& plan, std::size_t cycles) {
    lab::RunRecorder recorder(path_, plan);
    const std::size_t channels = std::max<std::size_t>(plan.channels.size(), 1);
    for (std::size_t cycle = 1; cycle <= cycles; ++cycle) {
      lab::MeasuredFrame frame{.stage = lab::Stage::kAmplification,
                               .cycle = static_cast<std::uint16_t>(cycle),
                               .wells = {}};
      for (const std::uint16_t well : recorder.Wells()) {
        auto& measured = frame.wells.emplace_back();
        measured.well = well;
        for (std::size_t channel = 0; channel < channels; ++channel) {
          const auto copies = std::pow(10, static_cast<double>(channel) + 2);
          measured.values.push_back(Measured({.copies = copies}, well, cycles).readings[cycle - 1]);
        }
      }
      recorder.Append(frame);
    }
    recorder.Finish();
  }

  std::string messageOf(const std::function<void(const RunReader&)>& analyse) const {
    const RunReader run(path_);
    const lab::Error error = ErrorOf([&] { analyse(run); });
    EXPECT_EQ(error.File(), path_);
    EXPECT_EQ(error.Class(), lab::ErrorClass::kDocument);
    return error.Message();
  }
  std::string cqMessage() const {
    return messageOf([](const RunReader& run) { static_cast<void>(AnalyseCq(run)); });
  }
  std::string meltMessage() const {
    return messageOf([](const RunReader& run) { static_cast<void>(AnalyseMelt(run)); });
  }

  std::string path_ = folder_ / "run.vex";
};

TEST_F(RunAnalysisTest, ReadsADetectorThroughTheChannelOfItsReporter) {
  RecordingPlan plan = planOf("VIC");
  plan.channels = {"FAM", "VIC"};
  plan.plate.wells[1].targets[0].reporter = "FAM";
  plan.plate.wells[1].targets[0].detector = "ACT";
  record(plan, 40);
  const CqAnalysis analysis = AnalyseCq(RunReader(path_));
  ASSERT_EQ(analysis.wells.size(), 2U);
  EXPECT_EQ(analysis.wells[0].curve.channel, "VIC");
  EXPECT_EQ(analysis.wells[1].curve.channel, "FAM");
  ASSERT_TRUE(analysis.wells[0].cq && analysis.wells[1].cq);
  EXPECT_LT(*analysis.wells[0].cq + 3, *analysis.wells[1].cq);
}

TEST_F(RunAnalysisTest, OfADyeWithoutAChannelHasNoReadings) {
  RecordingPlan plan = planOf("ROX");
  plan.channels = {"FAM", "VIC"};
  record(plan, 12);
  const CqAnalysis analysis = AnalyseCq(RunReader(path_));
  EXPECT_EQ(analysis.wells[0].reason, NoCq::kNoReadings);
  EXPECT_EQ(analysis.wells[0].note, "no readings of the dye ROX");
}

TEST_F(RunAnalysisTest, WithoutDetectorsTakesEveryWellAndChannel) {
  RecordingPlan plan = planOf("FAM");
  plan.channels = {"FAM", "VIC"};
  for (lab::Well& well : plan.plate.wells) well.targets.clear();
  record(plan, 40);
  const CqAnalysis analysis = AnalyseCq(RunReader(path_));
  ASSERT_EQ(analysis.wells.size(), 4U);
  EXPECT_EQ(analysis.wells[1].curve.well.detector, "VIC");
  EXPECT_EQ(analysis.wells[1].curve.well.name, "A1");
  EXPECT_EQ(analysis.wells[1].curve.well.sample, "liver");
  EXPECT_TRUE(analysis.wells[3].cq);
}

TEST_F(RunAnalysisTest, WithoutFramesSaysSo) {
  lab::RunRecorder(path_, planOf("FAM"));
  EXPECT_EQ(cqMessage(), "cannot determine quantification cycles: it has no frames of readings");
  EXPECT_EQ(meltMessage(), "cannot determine melting curves: it has no frames of readings");
}

TEST_F(RunAnalysisTest, OfOneFrameHasTooFewCycles) {
  record(planOf("FAM"), 1);
  const CqAnalysis analysis = AnalyseCq(RunReader(path_));
  EXPECT_EQ(analysis.wells[0].reason, NoCq::kTooFewCycles);
  EXPECT_EQ(analysis.wells[0].note, "too few cycles: at least 10 are needed");
  EXPECT_EQ(meltMessage(), "cannot determine melting curves: the run has no melting stage");
}

TEST_F(RunAnalysisTest, OfAnotherProgramsReadingsSaysThatTheyAreUnknown) {
  ForeignRun run(path_, 4);
  run.Begin();
  run.Append();
  EXPECT_EQ(cqMessage(),
            "cannot determine quantification cycles: vex did not record its readings, so their "
            "meaning is not known");
}

TEST_F(RunAnalysisTest, TakesNoNumbersThatAreNone) {
  RecordingPlan plan = planOf("FAM");
  plan.plate.wells[0].targets[0].quantity = 5;
  record(plan, 40);
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), 0);
  Vex2Detector detector;
  detector.name = "MYC";
  detector.threshold = std::numeric_limits<float>::quiet_NaN();
  detector.baselineStart = 65535;
  detector.baselineEnd = 0;
  ASSERT_EQ(document.AppendDetectorInfo(&detector), 0);
  ASSERT_EQ(document.SaveToFile(path_.c_str()), 0);
  const CqAnalysis analysis = AnalyseCq(RunReader(path_));
  EXPECT_TRUE(analysis.wells[0].cq);
  EXPECT_TRUE(analysis.detectors[0].isThresholdAutomatic);
}

// No real plate has so many wells, but a malicious document can declare them.
TEST_F(RunAnalysisTest, Of65535WellsIsAnalysed) {
  constexpr std::uint16_t kWells = 65535;
  Vex2FileManager document;
  Vex2GlobalComplex settings;
  const std::string log = std::string(lab::kMeasuredSource) + "\nframes=1\nscale=1000\n";
  settings.SetLog(log.data(), static_cast<std::uint32_t>(log.size()));
  ASSERT_EQ(document.ReplaceGlobalComplexComp(&settings), 0);
  ASSERT_EQ(document.SaveToFile(path_.c_str()), 0);
  const auto numbers = WellNumbers(kWells);
  document.InitAcqDataWellNumberArray(numbers.data(), kWells, DataRAWa);
  Vex2FrameData frame = MakeFrame(kWells, 0);
  lab::RunReading reading{.cycle = 1, .temperature = 6000, .time = 1, .values = {700}};
  std::fill_n(frame.records, kWells, lab::EncodeReading(reading, false));
  ASSERT_EQ(document.AppendAcquisitionDataFrame(path_.c_str(), &frame, DataRAWa), 0);
  const CqAnalysis analysis = AnalyseCq(RunReader(path_));
  ASSERT_EQ(analysis.wells.size(), kWells);
  EXPECT_EQ(analysis.wells.back().reason, NoCq::kTooFewCycles);
  EXPECT_EQ(analysis.wells.back().curve.readings, std::vector<double>{0.7});
}

TEST(AnalyseCurves, Of65535CurvesTakesNoLongerThanTheirNumberAsksFor) {
  const std::vector<lab::AmplificationCurve> curves(65535, Measured({}, 1, 12));
  const CqAnalysis analysis = lab::AnalyseCurves(curves, {});
  EXPECT_EQ(analysis.wells.size(), curves.size());
  EXPECT_FALSE(analysis.wells.back().cq);
}

TEST_F(RunAnalysisTest, OfARunInProgressAndWellsNotMeasuredFindsThemMissing) {
  RecordingPlan plan = planOf("FAM");
  plan.plate.wells.push_back(
      {.number = 14, .name = {}, .sample = "kidney", .targets = {{"MYC", "UNKN", {}, "FAM"}}});
  plan.wells = {1, 2};
  lab::RunRecorder recorder(path_, plan);
  lab::MeasuredFrame frame{.stage = lab::Stage::kAmplification, .cycle = 1, .wells = {}};
  for (std::uint16_t well = 1; well <= 2; ++well) {
    frame.wells.push_back({.well = well, .temperature = 60, .time = 0, .values = {1.0}});
  }
  recorder.Append(frame);
  std::vector<std::string> texts;
  for (const auto& finding : AnalyseCq(RunReader(path_)).findings) texts.push_back(finding.text);
  EXPECT_THAT(texts, testing::Contains("the run is not complete (status PROG, 1 frame)"));
  EXPECT_THAT(texts, testing::Contains("1 well of the setup was not measured: B2"));
}

TEST_F(RunAnalysisTest, StoresItsCyclesWhereApplicationsLookForThem) {
  record(planOf("FAM"), 40);
  const CqAnalysis analysis = AnalyseCq(RunReader(path_));
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), 0);
  EXPECT_EQ(lab::StoredCq(document, analysis.wells[0].curve.well), std::nullopt);
  lab::StoreCq(analysis, document);
  EXPECT_EQ(document.GetCtAt(nullptr, "MYC", 2), static_cast<float>(*analysis.wells[1].cq));
  EXPECT_NEAR(*lab::StoredCq(document, analysis.wells[0].curve.well), *analysis.wells[0].cq, 1e-5);
  CqAnalysis none = analysis;
  none.wells[0].cq.reset();
  lab::StoreCq(none, document);
  EXPECT_EQ(lab::StoredCq(document, analysis.wells[0].curve.well), std::nullopt);
  EXPECT_TRUE(lab::StoredCq(document, analysis.wells[1].curve.well));
}

TEST_F(RunAnalysisTest, StoresTheCyclesOfAPlateBesideIt) {
  record(planOf("FAM"), 40);
  CqAnalysis analysis = AnalyseCq(RunReader(path_));
  analysis.wells[0].curve.well.plate = "plate1";
  Vex2FileManager document;
  lab::StoreCq(analysis, document);
  EXPECT_EQ(document.GetCtAt("plate1", "MYC", 1), static_cast<float>(*analysis.wells[0].cq));
  EXPECT_EQ(document.GetCtAt(nullptr, "MYC", 2), static_cast<float>(*analysis.wells[1].cq));
}

TEST_F(RunAnalysisTest, FindsTheMeltingPeaksOfASimulatedRun) {
  Record(SmallRun(40, 60), path_);
  const auto curves = AnalyseMelt(RunReader(path_));
  ASSERT_EQ(curves.size(), 96U);
  EXPECT_EQ(curves[0].peaks.size(), 1U);
  EXPECT_TRUE(curves[11].peaks.empty());  // no template
  EXPECT_EQ(AnalyseMelt(RunReader(path_), "target B").size(), 12U);
  EXPECT_EQ(ErrorOf([&] { AnalyseMelt(RunReader(path_), "none"); }).Class(),
            lab::ErrorClass::kUsage);
}

TEST_F(RunAnalysisTest, OfThreeTemperaturesHasTooFew) {
  Record(SmallRun(2, 3), path_);
  EXPECT_THAT(meltMessage(), HasSubstr("fewer than five temperatures"));
}

}  // namespace
}  // namespace vex2::test
