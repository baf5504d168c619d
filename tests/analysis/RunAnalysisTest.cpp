// Tests which parts of a document are analysed, and the errors for documents that cannot be
// analysed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <numeric>
#include <random>

#include "lab/analysis/Cq.h"
#include "lab/analysis/CqStorage.h"
#include "lab/analysis/Melt.h"
#include "lab/model/RunLog.h"
#include "lab/model/WellTemperature.h"
#include "lab/record/RunRecorder.h"
#include "tests/analysis/AnalysedRun.h"
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

class RunAnalysisTest : public AnalysedRunTest {
 protected:
  void record(const RecordingPlan& plan, std::size_t cycles) const {
    AnalysedRunTest::record(plan, cycles, path_);
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

std::vector<std::string> textsOf(const CqAnalysis& analysis, lab::QualityProblem problem) {
  std::vector<std::string> texts;
  for (const auto& finding : analysis.findings) {
    if (finding.problem == problem) texts.push_back(finding.text);
  }
  return texts;
}

TEST_F(RunAnalysisTest, SaysWhichReferenceNoWellHas) {
  struct Case {
    std::string calibrator;
    std::string control;
    std::string text;
  };
  const std::vector<Case> cases = {
      {"Liver", "myc",
       "samples are not compared, because no well has the endogenous control 'myc'; did you mean "
       "'MYC'?"},
      {"Liver", "ACT",
       "there are no ratios, because no well has the calibrator 'Liver'; did you mean 'liver'?"},
      {"liver", "",
       "samples are not compared with the calibrator 'liver', because no endogenous control is "
       "set"},
      {"kidney", "ACT",
       "1 sample has no Cq of the endogenous control 'ACT', and is not compared: kidney"},
      {"kidney", "ACT",
       "there are no ratios of MYC, because the calibrator 'kidney' has no Cq to compare with"}};
  for (const Case& each : cases) {
    const std::string path = folder_ / (each.calibrator + each.control + ".vex");
    RecordingPlan plan = planOf("FAM", 3);
    plan.plate.wells[1].targets[0].detector = "ACT";
    plan.plate.wells[2].sample = "kidney";
    for (const auto& [name, value] : {std::pair("calibrator", each.calibrator),
                                      std::pair("endogenous-control", each.control)}) {
      if (!value.empty()) plan.settings.push_back({name, value});
    }
    if (!std::filesystem::exists(path)) AnalysedRunTest::record(plan, 40, path);
    EXPECT_THAT(textsOf(AnalyseCq(RunReader(path)), lab::QualityProblem::kSettingNotUsed),
                testing::Contains(each.text));
    EXPECT_THAT(textsOf(AnalyseCq(RunReader(path), {.detector = "MYC"}),
                        lab::QualityProblem::kSettingNotUsed),
                testing::IsEmpty());
  }
}

TEST_F(RunAnalysisTest, SaysWhichSettingsOfADetectorAreNotUsed) {
  RecordingPlan plan = planOf("FAM");
  lab::Detector& detector = plan.detectors.emplace_back();
  detector.name = "MYC";
  detector.reporterDye = "FAM";
  detector.baselineStart = 50;
  detector.baselineEnd = 60;
  detector.threshold = -1;
  record(plan, 40);
  const CqAnalysis analysis = AnalyseCq(RunReader(path_));
  EXPECT_THAT(
      textsOf(analysis, lab::QualityProblem::kSettingNotUsed),
      testing::UnorderedElementsAre(
          "MYC: the baseline 50-60 is not used, because it has fewer than three cycles with "
          "readings",
          "MYC: the threshold -1 is not used, because it is not a number above 0"));
  EXPECT_EQ(analysis.wells[0].note,
            "the set baseline 50-60 has fewer than three cycles with readings");
  EXPECT_EQ(analysis.wells[0].unusedBaseline, (lab::CycleRange{50, 60}));
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

TEST_F(RunAnalysisTest, OfNoiseAloneHasNoMeltingPeaks) {
  std::mt19937 random(7);
  std::normal_distribution<double> noise(0, 0.003);
  for (const double step : {0.5, 0.3, 0.15}) {
    for (const double fall : {0.0, 0.01}) {
      const std::string path = folder_ / ("noise" + std::to_string(step + fall) + ".vex");
      RecordingPlan plan = planOf("FAM", 96);
      plan.scale = lab::ReadingScale(20000);
      recordMelting(plan, static_cast<std::size_t>(35 / step), path,
                    [&](std::uint16_t, std::size_t at) {
                      const double warmer = step * static_cast<double>(at);
                      return MeltReading{60 + warmer, 1 - fall * warmer + noise(random)};
                    });
      for (const lab::MeltCurve& curve : AnalyseMelt(RunReader(path))) {
        EXPECT_TRUE(curve.peaks.empty()) << step << " " << fall << " " << curve.well.name;
      }
    }
  }
}

// A product of a tenth of the light is far above the noise.
TEST_F(RunAnalysisTest, FindsAFaintProductInNoise) {
  std::mt19937 random(8);
  std::normal_distribution<double> noise(0, 0.003);
  RecordingPlan plan = planOf("FAM", 48);
  plan.scale = lab::ReadingScale(20000);
  recordMelting(plan, 117, path_, [&](std::uint16_t, std::size_t at) {
    const double temperature = 60 + 0.3 * static_cast<double>(at);
    return MeltReading{temperature,
                       1 + noise(random) + 0.1 / (1 + std::exp((temperature - 82) / 0.8))};
  });
  for (const lab::MeltCurve& curve : AnalyseMelt(RunReader(path_))) {
    ASSERT_EQ(curve.peaks.size(), 1U) << curve.well.name;
    EXPECT_NEAR(curve.peaks[0].temperature, 82, 1);
    EXPECT_GT(curve.peaks[0].prominence, 8 * curve.peaks[0].prominenceError);
  }
}

TEST_F(RunAnalysisTest, OfLevelOrSteppedReadingsHasNoMeltingPeaks) {
  for (const double fall : {0.0, 0.00004}) {  // of 0.001, which is stored, in 25 steps
    const std::string path = folder_ / (fall == 0 ? "level.vex" : "steps.vex");
    recordMelting(planOf("FAM"), 175, path, [&](std::uint16_t, std::size_t at) {
      return MeltReading{60 + 0.2 * static_cast<double>(at), 0.7 - fall * static_cast<double>(at)};
    });
    for (const lab::MeltCurve& curve : AnalyseMelt(RunReader(path))) {
      EXPECT_TRUE(curve.peaks.empty()) << fall << " " << curve.peaks[0].temperature;
    }
  }
}

// Of a gradient of the block.
TEST_F(RunAnalysisTest, TakesTheMeltingTemperaturesOfEachWell) {
  recordMelting(planOf("FAM", 3), 117, path_, [](std::uint16_t well, std::size_t at) {
    const double temperature = 60 + 0.3 * static_cast<double>(at) + 0.5 * (well - 1);
    return MeltReading{temperature, 1 + 4 / (1 + std::exp((temperature - 82) / 0.8))};
  });
  const auto curves = AnalyseMelt(RunReader(path_));
  ASSERT_EQ(curves.size(), 3U);
  for (const lab::MeltCurve& curve : curves) {
    EXPECT_EQ(curve.temperatures.front(), 60 + 0.5 * (curve.well.number - 1));
    ASSERT_EQ(curve.peaks.size(), 1U);
    EXPECT_NEAR(curve.peaks[0].temperature, 82, 0.05) << curve.well.name;
  }
  const lab::Readings readings = RunReader(path_).Readings();
  EXPECT_EQ(readings.Axis()[1].temperature, 60.3);
  EXPECT_EQ(lab::WellTemperature(readings, 1, 0), 60.3);
  EXPECT_EQ(lab::WellTemperature(readings, 1, 2), 61.3);
}

TEST_F(RunAnalysisTest, OfThreeTemperaturesHasTooFew) {
  Record(SmallRun(2, 3), path_);
  EXPECT_THAT(meltMessage(), HasSubstr("fewer than five temperatures"));
}

}  // namespace
}  // namespace vex2::test
