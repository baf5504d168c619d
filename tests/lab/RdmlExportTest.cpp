#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "lab/model/DocumentEditor.h"
#include "lab/record/MeasuredRun.h"
#include "lab/record/PlanDocument.h"
#include "tests/lab/RdmlFiles.h"

namespace {

using namespace vex2::lab;
using namespace vex2::test;
using testing::HasSubstr;
using testing::IsEmpty;

class RdmlExport : public TempFolderTest {
 protected:
  // Every document that can be read whole: those of the tests, and the samples.
  static std::vector<std::string> documents() {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(SourcePath("tests/data"))) {
      if (entry.path().extension() == ".vex") paths.push_back(entry.path());
    }
    for (const auto& sample : SampleFiles("golden", ".vex")) paths.push_back(sample);
    std::erase_if(paths, [](const std::string& path) {
      try {
        return Document(path).Fault().has_value();
      } catch (const Error&) {
        return true;
      }
    });
    return paths;
  }

  std::string recordReal(const std::string& plate) {
    MeasuredRunFiles files;
    files.readings = SampleFolder() / "real" / ("calibration-" + plate + "-readings.csv");
    files.wells = SampleFolder() / "real" / ("calibration-" + plate + "-wells.csv");
    files.started = RunStart::Parse("2019-03-04T10:20:30+01:00");
    const std::string path = folder_ / ("real-" + plate + ".vex");
    RunPlan plan = LoadMeasuredRun(files).plan;
    Vex2FileManager document;
    StoreWholeRun(document, plan);
    EXPECT_EQ(document.SaveToFile(path.c_str()), 0);
    return path;
  }

  void expectValid(const std::string& archive) {
    if (!HasSchemaCheck()) GTEST_SKIP() << "xmllint is not installed";
    const std::string xml = folder_ / "rdml_data.xml";
    WriteText(xml, ReadMember(archive, "rdml_data.xml"));
    EXPECT_EQ(SchemaFaults(xml), "") << archive;
  }
};

// What an import without the embedded document must bring back.
void ExpectSameRun(const RunReader& imported, const RunReader& original) {
  EXPECT_EQ(imported.Detectors(), original.Detectors());
  EXPECT_EQ(imported.RequiredDyes(), original.RequiredDyes());
  EXPECT_EQ(imported.State(), original.State());
  EXPECT_EQ(imported.AssayCode(), original.AssayCode());
  for (const Well& well : original.Plate().wells) {
    const Well* same = imported.Plate().Find(well.number);
    ASSERT_NE(same, nullptr) << well.name;
    EXPECT_EQ(*same, well) << well.name;
  }
  const Readings one = original.Readings();
  const Readings other = imported.Readings();
  ASSERT_EQ(other.FrameCount(), one.FrameCount());
  ASSERT_EQ(other.Wells(), one.Wells());
  for (std::size_t frame = 0; frame < one.FrameCount(); ++frame) {
    EXPECT_EQ(other.Axis()[frame].stage, one.Axis()[frame].stage);
    EXPECT_EQ(other.Axis()[frame].cycle, one.Axis()[frame].cycle);
    EXPECT_EQ(other.Axis()[frame].temperature, one.Axis()[frame].temperature);
    for (std::size_t channel = 0; channel < one.ChannelCount(); ++channel) {
      for (std::size_t well = 0; well < one.WellCount(); ++well) {
        ASSERT_EQ(other.Fluorescence(frame, well, channel), one.Fluorescence(frame, well, channel))
            << "frame " << frame << ", well " << well;
      }
    }
  }
}

TEST_F(RdmlExport, EverySampleIsValidByTheSchema) {
  if (!HasSchemaCheck()) GTEST_SKIP() << "xmllint is not installed";
  for (const std::string& path : documents()) {
    expectValid(ExportTo(path, folder_ / "out.rdml"));
  }
}

TEST_F(RdmlExport, EverySampleImportsByteForByte) {
  std::size_t count = 0;
  for (const std::string& path : documents()) {
    const std::string archive = ExportTo(path, folder_ / "out.rdml");
    std::filesystem::remove(folder_ / "back.vex");
    const ImportReport report = Import(archive, folder_ / "back.vex");
    EXPECT_TRUE(report.isEmbedded);
    EXPECT_THAT(report.losses.List(), IsEmpty());
    EXPECT_EQ(FirstDifference(ReadBytes(folder_ / "back.vex"), ReadBytes(path)), "") << path;
    ++count;
  }
  EXPECT_GE(count, 4U);
}

TEST_F(RdmlExport, EverySampleImportsWithoutItsDocument) {
  for (const std::string& path : documents()) {
    Losses losses;
    const std::string archive =
        ExportTo(path, folder_ / "out.rdml", {.plate = {}, .embedsDocument = false}, &losses);
    const RunReader original(path);
    if (original.IsStudy() && original.PlateNames().empty()) continue;
    const ImportReport report =
        Import(archive, folder_ / "back.vex", {.replace = true, .study = original.IsStudy()});
    EXPECT_FALSE(report.isEmbedded);
    const RunReader back(folder_ / "back.vex");
    EXPECT_TRUE(back.IsWhole()) << path;
    for (const Well& well : original.Plate().wells) {
      if (well.sample.empty() && well.targets.empty()) continue;
      const Well* same = back.Plate().Find(well.number);
      ASSERT_NE(same, nullptr) << path << " " << well.name;
      EXPECT_EQ(same->sample, well.sample) << path;
    }
  }
}

TEST_F(RdmlExport, RealRunsComeBackWithoutTheirDocument) {
  if (SampleFolder().empty()) GTEST_SKIP() << "there are no samples";
  for (const std::string plate : {"96", "384"}) {
    const std::string path = recordReal(plate);
    Losses losses;
    const std::string archive =
        ExportTo(path, folder_ / "real.rdml", {.plate = {}, .embedsDocument = false}, &losses);
    expectValid(archive);
    const RunReader original(path);
    const auto readings = original.FrameCount() * original.Wells().size();
    EXPECT_EQ(CountOf(losses, "times of readings"), readings);
    EXPECT_EQ(losses.List().size(), 1U) << TextOf(losses);
    const ImportReport report = Import(archive, folder_ / "back.vex", {.replace = true});
    EXPECT_EQ(TextOf(report.losses), "");
    ExpectSameRun(RunReader(folder_ / "back.vex"), original);
  }
}

TEST_F(RdmlExport, SimulatedRunComesBackWithSettingsAndProgram) {
  const std::string path = folder_ / "run.vex";
  Record(SmallRun(), path);
  {
    DocumentEditor editor(path);
    editor.Set("comment", "Größe <1> & \"2\"");
    editor.Set("sample-volume", std::int64_t{25});
    editor.Set("endogenous-control", "none of these");
    editor.Save();
  }
  const std::string archive =
      ExportTo(path, folder_ / "run.rdml", {.plate = {}, .embedsDocument = false});
  expectValid(archive);
  Import(archive, folder_ / "back.vex");
  const RunReader back(folder_ / "back.vex");
  const RunReader original(path);
  ExpectSameRun(back, original);
  ASSERT_TRUE(back.Program());
  EXPECT_EQ(*back.Program(), *original.Program());
  for (const SettingValue& setting : original.Settings()) {
    if (setting.name == "log") continue;
    EXPECT_THAT(back.Settings(), testing::Contains(setting));
  }
}

TEST_F(RdmlExport, SameDocumentMakesTheSameBytes) {
  const std::string path = folder_ / "run.vex";
  Record(SmallRun(), path);
  EXPECT_EQ(ReadBytes(ExportTo(path, folder_ / "one.rdml")),
            ReadBytes(ExportTo(path, folder_ / "two.rdml")));
}

TEST_F(RdmlExport, WholeRunHasTheBytesOfARecording) {
  RunPlan plan = SmallRun();
  plan.started = RunStart::Parse("2026-11-22T08:00:00Z");
  const std::string recorded = folder_ / "recorded.vex";
  Record(plan, recorded);
  Vex2FileManager document;
  StoreWholeRun(document, plan);
  const std::string whole = folder_ / "whole.vex";
  ASSERT_EQ(document.SaveToFile(whole.c_str()), 0);
  EXPECT_EQ(FirstDifference(ReadBytes(whole), ReadBytes(recorded)), "");
}

TEST_F(RdmlExport, DocumentIsNotTakenOnceTheXmlWasChanged) {
  const std::string path = folder_ / "run.vex";
  Record(SmallRun(), path);
  const std::string archive = ExportTo(path, folder_ / "run.rdml");
  std::string xml = ReadMember(archive, "rdml_data.xml");
  const std::string document = ReadMember(archive, "vex/document.vex");
  xml.replace(xml.find("<sample id=\""), 12, "<sample id=\"changed ");
  WriteZip(archive, {{"rdml_data.xml", xml}, {"vex/document.vex", document}});
  const ImportReport report = Import(archive, folder_ / "new.vex");
  EXPECT_FALSE(report.isEmbedded);
  EXPECT_THAT(report.notes, testing::ElementsAre(HasSubstr("has changed the RDML since")));
  const ImportReport forced =
      Import(archive, folder_ / "old.vex", {.embedded = ImportOptions::Embedded::kAlways});
  EXPECT_TRUE(forced.isEmbedded);
  EXPECT_EQ(ReadBytes(folder_ / "old.vex"), ReadBytes(path));
}

TEST_F(RdmlExport, ReadingsOfUnknownMeaningAreListedNotInvented) {
  const std::string path = folder_ / "foreign.vex";
  ForeignRun run(path, 3);
  run.Begin();
  run.Append();
  Losses losses;
  const std::string archive = ExportTo(path, folder_ / "out.rdml", {}, &losses);
  EXPECT_EQ(CountOf(losses, "records of readings whose meaning is not known"), 3U);
  EXPECT_THAT(ReadMember(archive, "rdml_data.xml"), testing::Not(HasSubstr("<fluor>")));
}

}  // namespace
