#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "lab/compare/Diff.h"
#include "lab/exchange/WideReadings.h"
#include "lab/json/LossReport.h"
#include "lab/model/DocumentEditor.h"
#include "lab/model/Study.h"
#include "lab/rdml/Rdes.h"
#include "lab/record/RunRecorder.h"
#include "tests/lab/RdmlFiles.h"

namespace {

using namespace vex2::lab;
using namespace vex2::test;
using testing::HasSubstr;

// Tests what exports and imports report about values that they lose or change.
class ExchangeLosses : public TempFolderTest {
 protected:
  static void record(const std::string& path, const RecordingPlan& plan,
                     const std::vector<MeasuredFrame>& frames) {
    RunRecorder recorder(path, plan);
    for (const MeasuredFrame& frame : frames) recorder.Append(frame);
    recorder.Finish();
  }

  static Target target(const std::string& detector, const std::string& reporter,
                       const std::string& task = "UNKN") {
    return {.detector = detector, .task = task, .quantity = {}, .reporter = reporter};
  }

  std::string exported() {
    Losses losses;
    ExportTo(run_, folder_ / "run.rdml", {.plate = {}, .embedsDocument = false}, &losses);
    return TextOf(losses);
  }

  std::string table(bool melting) {
    const Document document(run_);
    const PlateSource source = SourceOf(document.Itself());
    std::ostringstream out;
    Losses losses;
    WriteRdes(out, source, melting, true, losses);
    return TextOf(losses);
  }

  ImportReport imported(const std::string& xml) {
    WriteText(folder_ / "in.rdml", xml);
    return Import(folder_ / "in.rdml", run_, {.replace = true});
  }

  std::string run_ = folder_ / "run.vex";
};

TEST_F(ExchangeLosses, ControlCharactersAreListedByTheirPlace) {
  RecordingPlan plan;
  plan.scale = ReadingScale(1000);
  plan.channels = {"c\x01"};
  plan.plate.wells = {
      {.number = 1, .name = {}, .sample = "s\x01", .targets = {target("d\x01", "green")}}};
  Detector& detector = plan.detectors.emplace_back();
  detector.name = "d\x01";
  detector.description = "x\x02";
  detector.reporterDye = "green";
  plan.requiredDyes = {"e\x01"};
  record(run_, plan, {{.cycle = 1, .wells = {{.well = 1, .values = {1.5}}}}});
  const std::string losses = exported();
  for (const char* what :
       {"names of samples (1)", "names of detectors (1)", "descriptions of detectors (1)",
        "names of channels (1)", "names of dyes (2)"}) {
    EXPECT_THAT(losses, HasSubstr("changed: control characters in " + std::string(what))) << what;
  }
  EXPECT_THAT(table(false), HasSubstr("readings without a target, called after their channel"));
}

TEST_F(ExchangeLosses, ControlCharactersInNamesOfPlatesAreListed) {
  Record(SmallRun(1, 0), folder_ / "plate.vex");
  DocumentFile plate;
  ASSERT_EQ(plate.ReadFromFile((folder_ / "plate.vex").c_str()), 0);
  DocumentFile study;
  AddMadePlate(study, plate, "p\x01", "");
  ASSERT_EQ(study.SaveToFile(run_.c_str()), 0);
  EXPECT_THAT(exported(), HasSubstr("changed: control characters in names of plates (1)"));
}

TEST_F(ExchangeLosses, OneChannelForSeveralTargetsIsReported) {
  RecordingPlan plan;
  plan.scale = ReadingScale(1000);
  plan.plate.wells = {{.number = 1,
                       .name = {},
                       .sample = "s",
                       .targets = {target("d", "green"), target("e", "red")}}};
  record(run_, plan, {{.cycle = 1, .wells = {{.well = 1, .values = {1.5}}}}});
  EXPECT_THAT(exported(),
              HasSubstr("changed: wells of several targets and one channel, written to the "
                        "first (1), as A1"));
}

TEST_F(ExchangeLosses, TablesListTypesAndTabs) {
  RecordingPlan plan;
  plan.scale = ReadingScale(1000);
  plan.channels = {"green", "red"};
  plan.plate.wells = {{.number = 1,
                       .name = {},
                       .sample = "a\tb",
                       .targets = {target("d", "green"), target("e", "red", "NTC")}}};
  record(run_, plan, {{.cycle = 1, .wells = {{.well = 1, .values = {1.5, 2.5}}}}});
  const std::string losses = table(false);
  EXPECT_THAT(losses, HasSubstr("sample types that differ by targets (2), as a\tb: ntc is unkn"));
  EXPECT_THAT(losses, HasSubstr("tabs and line ends in names (2), as 'a b'"));
}

TEST_F(ExchangeLosses, SpectraAreListed) {
  Record(SmallRun(), run_);
  const std::string losses = exported();
  EXPECT_THAT(losses, HasSubstr("spectra of pure dyes"));
  EXPECT_THAT(losses, HasSubstr("spectra of the background"));
}

TEST_F(ExchangeLosses, WideRowsListTimesThatDiffer) {
  RecordingPlan plan;
  plan.scale = ReadingScale(1000);
  plan.wells = {1, 2};
  record(run_, plan,
         {{.cycle = 1,
           .wells = {{.well = 1, .temperature = 60, .values = {1.5}},
                     {.well = 2, .temperature = 60.5, .values = {2.5}}}}});
  const Document document(run_);
  const PlateSource source = SourceOf(document.Itself());
  std::ostringstream out;
  Losses losses;
  WriteWideReadings(out, source, losses);
  EXPECT_EQ(
      TextOf(losses),
      "changed: times and temperatures that differ from those of a frame's first well (1), as "
      "A2 amplification cycle 1\n");
}

TEST_F(ExchangeLosses, TextsBeyondLatin1AreListed) {
  ForeignRdml rdml;
  rdml.dyes = "<dye id=\"\u6F22\"/>";
  rdml.targets =
      "<target id=\"MYC\"><description>\u6F22</description><type>toi</type>"
      "<dyeId id=\"\u6F22\"/></target>";
  rdml.conditions =
      "<thermalCyclingConditions id=\"c\"><description>\u6F22</description><step><nr>1</nr>"
      "<lidOpen/></step></thermalCyclingConditions>";
  rdml.format =
      "<description>\u6F22</description><thermalCyclingConditions id=\"c\"/>"
      "<runDate>2026-01-02T03:04:05.5Z</runDate>";
  const std::string losses = TextOf(imported(rdml.Text()).losses);
  for (const char* what :
       {"names of dyes", "descriptions of targets", "descriptions of runs",
        "characters in thermal cycling programs", "starts of runs with parts of a second"}) {
    EXPECT_THAT(losses, HasSubstr("changed: " + std::string(what) + " (1)")) << what;
  }
  EXPECT_THAT(losses, HasSubstr("plate formats (1), as none is given; it is taken as 8 and 12"));
}

TEST_F(ExchangeLosses, ReadingsWithoutAPlaceAreListed) {
  ForeignRdml rdml;
  rdml.runs = rdml.Run("r", rdml.React(1, "S1",
                                       "<data><tar id=\"MYC\"/>"
                                       "<adp><cyc>0</cyc><fluor>1</fluor></adp>"
                                       "<adp><cyc>1</cyc><fluor>1.23456789</fluor></adp>"
                                       "<adp><cyc>2</cyc><fluor>9000.5</fluor></adp>"
                                       "<adp><cyc>3</cyc><fluor>0.333333</fluor></adp>"
                                       "<mdp><fluor>1</fluor></mdp></data>"));
  const std::string losses = TextOf(imported(rdml.Text()).losses);
  EXPECT_THAT(losses, HasSubstr("lost: readings of cycles that are not from 1 to 65535 (1)"));
  EXPECT_THAT(losses, HasSubstr("lost: readings of a melting without a temperature (1)"));
  EXPECT_THAT(losses, testing::ContainsRegex(
                          "readings, rounded to 16 bits .[0-9]+., as by up to 0\\.[0-9]+,"
                          " in steps of 0\\.[0-9]+"));
}

TEST_F(ExchangeLosses, CyclesInAnotherOrderAreListed) {
  RecordingPlan plan;
  plan.scale = ReadingScale(1000);
  plan.wells = {1};
  record(run_, plan,
         {{.cycle = 1, .wells = {{.well = 1, .values = {1.5}}}},
          {.cycle = 2, .wells = {{.well = 1, .values = {2.5}}}}});
  DocumentFile document;
  ASSERT_EQ(document.ReadFromFile(run_.c_str()), 0);
  Vex2WellRecord first;
  Vex2WellRecord second;
  ASSERT_TRUE(document.GetAcqDataWellRecord(&first, 0, 1, DataRAWa));
  ASSERT_TRUE(document.GetAcqDataWellRecord(&second, 1, 1, DataRAWa));
  ASSERT_TRUE(document.SetAcqDataWellRecord(&second, 0, 1, DataRAWa));
  ASSERT_TRUE(document.SetAcqDataWellRecord(&first, 1, 1, DataRAWa));
  ASSERT_EQ(document.SaveToFile(run_.c_str()), 0);
  EXPECT_THAT(exported(), HasSubstr("changed: readings in another order than that of their "
                                    "cycles (1), as A1 amplification cycle 1"));
}

TEST_F(ExchangeLosses, SettingsThatNoDocumentHasAreListed) {
  ForeignRdml rdml;
  rdml.dyes =
      "<documentation id=\"vex settings\"><text>colour=red\nsample-volume=25\nx\n"
      "</text></documentation>" +
      rdml.dyes;
  rdml.format = "<documentation id=\"vex settings\"/>" + rdml.format;
  const ImportReport report = imported(rdml.Text());
  EXPECT_THAT(TextOf(report.losses),
              HasSubstr("lost: settings that no document has (1), as 'colour'"));
  EXPECT_THAT(RunReader(run_).Settings(),
              testing::Contains(SettingValue{"sample-volume", std::int64_t{25}}));
}

TEST_F(ExchangeLosses, EmbeddedDocumentLosesNothingButForOtherPrograms) {
  Record(SmallRun(1, 0), run_);
  Losses whole;
  Losses bare;
  ExportTo(run_, folder_ / "whole.rdml", {}, &whole);
  ExportTo(run_, folder_ / "bare.rdml", {.plate = {}, .embedsDocument = false}, &bare);
  EXPECT_TRUE(whole.hasDocument);
  EXPECT_FALSE(bare.hasDocument);
  EXPECT_FALSE(whole.IsEmpty());
  EXPECT_EQ(whole.List(), bare.List());
  EXPECT_THAT(LossReportJson(whole, "a", "b"), HasSubstr("\"hasDocument\": true"));
  EXPECT_THAT(LossReportJson(bare, "a", "b"), HasSubstr("\"hasDocument\": false"));
  const Loss lost{"comments", 1, "'x'", false};
  const Loss changed{"names", 2, "'x' is 'y'", true};
  using vex2::lab::TextOf;
  EXPECT_EQ(TextOf(lost, false), "lost: comments (1), as 'x'");
  EXPECT_EQ(TextOf(lost, true), "other programs do not see: comments (1), as 'x'");
  EXPECT_EQ(TextOf(changed, false), "changed: names (2), as 'x' is 'y'");
  EXPECT_EQ(TextOf(changed, true), "other programs see changed: names (2), as 'x' is 'y'");
}

TEST_F(ExchangeLosses, NotesSayWhichRunsBecameOne) {
  ForeignRdml rdml;
  rdml.runs = rdml.Run("fam", rdml.React(1, "S1", rdml.Data("MYC", 10))) +
              rdml.Run("vic", rdml.React(1, "S1", rdml.Data("ACT", 50)));
  EXPECT_THAT(imported(rdml.Text()).notes,
              testing::ElementsAre("the runs 'fam' and 'vic' are parts of one plate, and one run "
                                   "of the document; --separate keeps them apart"));
}

TEST_F(ExchangeLosses, ExportedXmlSaysItsEncoding) {
  Record(SmallRun(1, 0), run_);
  exported();
  EXPECT_THAT(ReadMember(folder_ / "run.rdml", "rdml_data.xml"),
              testing::StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<rdml "));
}

}  // namespace
