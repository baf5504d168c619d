#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "lab/model/DocumentEditor.h"
#include "tests/lab/RdmlFiles.h"

namespace {

using namespace vex2::lab;
using namespace vex2::test;
using testing::HasSubstr;
using testing::IsEmpty;

class RdmlExport : public TempFolderTest {
 protected:
  void expectValid(const std::string& archive) {
    if (!HasSchemaCheck()) GTEST_SKIP() << "xmllint is not installed";
    const std::string xml = folder_ / "rdml_data.xml";
    WriteText(xml, ReadMember(archive, "rdml_data.xml"));
    EXPECT_EQ(SchemaFaults(xml), "") << archive;
  }
};

// Checks everything that an import restores without the embedded document.
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
  for (const std::string& path : WholeDocuments()) {
    expectValid(ExportTo(path, folder_ / "out.rdml"));
  }
}

TEST_F(RdmlExport, EverySampleImportsByteForByte) {
  std::size_t count = 0;
  for (const std::string& path : WholeDocuments()) {
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
  for (const std::string& path : WholeDocuments()) {
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
    const std::string path = folder_ / ("real-" + plate + ".vex");
    RecordReal(plate, path);
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
  EXPECT_THAT(
      report.notes,
      testing::ElementsAre(HasSubstr(
          "the document in the archive is not used: another program has changed the RDML since")));
  const ImportReport forced =
      Import(archive, folder_ / "old.vex", {.embedded = ImportOptions::Embedded::kAlways});
  EXPECT_TRUE(forced.isEmbedded);
  EXPECT_EQ(ReadBytes(folder_ / "old.vex"), ReadBytes(path));
}

TEST_F(RdmlExport, CqIsWrittenWithItsMethod) {
  const std::string path = folder_ / "run.vex";
  Record(SmallRun(40, 2), path);
  const auto xmlWith = [&](std::optional<CqMethod> method) {
    const std::string archive =
        ExportTo(path, folder_ / "run.rdml", {.plate = {}, .embedsDocument = false, .cq = method});
    expectValid(archive);
    return ReadMember(archive, "rdml_data.xml");
  };
  EXPECT_THAT(xmlWith({}), testing::Not(HasSubstr("<cq")));
  EXPECT_THAT(xmlWith(CqMethod::kSecondDerivative),
              HasSubstr("<cqDetectionMethod>second derivative maximum</cqDetectionMethod>"));
  const std::string xml = xmlWith(CqMethod::kThreshold);
  EXPECT_THAT(xml, HasSubstr("<cqDetectionMethod>automated threshold and baseline settings<"));
  std::size_t without = 0;
  for (const CqResult& result : AnalyseCq(RunReader(path)).wells) {
    const std::string& well = std::to_string(result.curve.well.number);
    const std::size_t react = xml.find("<react id=\"" + well + "\">");
    const std::size_t cq = xml.find("<cq>", react) + 4;
    const std::string text = xml.substr(cq, xml.find('<', cq) - cq);
    const auto expected = result.cq ? static_cast<float>(*result.cq) : -1.0F;
    EXPECT_EQ(std::stof(text), expected) << well;
    without += result.cq ? 0 : 1;
  }
  EXPECT_GT(without, 0U);
  const ImportReport report = Import(folder_ / "run.rdml", folder_ / "back.vex");
  EXPECT_EQ(CountOf(report.losses, "elements experiment/run/react/data/cq"), 96U);
  EXPECT_EQ(CountOf(report.losses, "elements experiment/run/cqDetectionMethod"), 1U);
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
