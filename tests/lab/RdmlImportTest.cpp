#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <vector>

#include "lab/rdml/XmlReader.h"
#include "tests/lab/RdmlFiles.h"
#include "tests/support/FaultyFileSystem.h"

namespace {

using namespace vex2::lab;
using namespace vex2::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string Utf16(const std::string& ascii) {
  std::string bytes = "\xFF\xFE";
  for (const char c : ascii) {
    bytes += c;
    bytes += '\0';
  }
  return bytes;
}

std::vector<std::string> FileNames(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  return names;
}

class RdmlImport : public TempFolderTest {
 protected:
  ImportReport import(const std::string& xml, const ImportOptions& options = {.replace = true}) {
    WriteText(source_, xml);
    return Import(source_, target_, options);
  }

  Error refusalOf(const std::string& xml) {
    const Error error = ErrorOf([&] { import(xml); });
    EXPECT_FALSE(std::filesystem::exists(target_)) << "a document was left behind";
    return error;
  }

  void expectThreeWells() {
    const RunReader run(target_);
    EXPECT_TRUE(run.IsWhole());
    EXPECT_THAT(run.Wells(), ElementsAre(1, 2, 14));
    const Readings readings = run.Readings();
    ASSERT_EQ(readings.FrameCount(), 3U);
    EXPECT_EQ(readings.Fluorescence(0, 0), 11.0);
    EXPECT_EQ(readings.Fluorescence(2, 1), 23.0);
    EXPECT_EQ(readings.Fluorescence(1, 2), 2.0);
    EXPECT_EQ(readings.Axis()[0].temperature, 60.5);
    EXPECT_EQ(run.Plate().Find("A1")->sample, "S1");
    EXPECT_THAT(run.Plate().Find("A1")->targets, ElementsAre(Target{"MYC", "STND", 100.0F, "FAM"}));
    EXPECT_THAT(run.Plate().Find("B2")->targets, ElementsAre(Target{"MYC", "NTC", {}, "FAM"}));
    EXPECT_EQ(run.State(), RunState::kDone);
  }

  std::string source_ = folder_ / "in.rdml";
  std::string target_ = folder_ / "out.vex";
};

TEST_F(RdmlImport, ReadsEveryVersionNamespaceAndEncoding) {
  ForeignRdml rdml;
  for (const char* version : {"1.0", "1.1", "1.2", "1.3"}) {
    rdml.version = version;
    import(rdml.Text());
    expectThreeWells();
  }
  for (const char* prefix : {"rdml", "x"}) {
    rdml.prefix = prefix;
    import(rdml.Text());
    expectThreeWells();
  }
  rdml.prefix.clear();
  const std::string text = rdml.Text();
  for (const std::string& xml :
       {"\xEF\xBB\xBF<?xml version=\"1.0\"?>" + text,
        Utf16("<?xml version=\"1.0\" encoding=\"UTF-16\"?>" + text),
        "<?xml version='1.0' encoding='ISO-8859-1' standalone='yes'?><!-- made by x -->\r\n" +
            text + "\n<!-- end -->"}) {
    import(xml);
    expectThreeWells();
  }
  std::string cdata = text;
  cdata.replace(cdata.find("11.000000"), 9, "<![CDATA[11]]>");
  import(cdata);
  expectThreeWells();
}

TEST_F(RdmlImport, FindsTheXmlUnderAnyName) {
  const std::string xml = ForeignRdml().Text();
  WriteZip(source_, {{"readme.txt", "hello"}, {"run one/MyRun.xml", xml}, {"../../x", "evil"}});
  const ImportReport report = Import(source_, target_);
  EXPECT_EQ(CountOf(report.losses, "further members of the archive"), 2U);
  expectThreeWells();
  WriteZip(source_, {{"readme.txt", "hello"}});
  EXPECT_THAT(ErrorOf([&] { Import(source_, target_, {.replace = true}); }).Message(),
              HasSubstr("it has no member rdml_data.xml"));
}

TEST_F(RdmlImport, SectionsMayComeInAnyOrder) {
  const ForeignRdml rdml;
  const std::string text = rdml.Text();
  const std::size_t begin = text.find("<experiment");
  const std::size_t end = text.find("</rdml>");
  const std::size_t first = text.find("<dye");
  import(text.substr(0, first) + text.substr(begin, end - begin) +
         text.substr(first, begin - first) + "</rdml>");
  expectThreeWells();
}

TEST_F(RdmlImport, MissingAndEmptyElementsAreNotInvented) {
  ForeignRdml rdml;
  rdml.format.clear();
  rdml.samples.clear();
  rdml.targets.clear();
  rdml.dyes.clear();
  rdml.runs = rdml.Run("",
                       "<react id=\"3\"><data><tar id=\"T\"/>"
                       "<adp><cyc>1</cyc><fluor>5</fluor></adp>"
                       "<adp><cyc>2</cyc><tmp/><fluor></fluor></adp>"
                       "<adp><cyc></cyc><fluor>6</fluor></adp></data></react>");
  const ImportReport report = import(rdml.Text());
  const RunReader run(target_);
  EXPECT_EQ(run.Readings().Fluorescence(0, 0), 5.0);
  EXPECT_EQ(run.Readings().Fluorescence(1, 0), std::nullopt);
  EXPECT_EQ(run.Axis()[0].temperature, 0.0);
  EXPECT_EQ(run.Plate().Find("A3")->sample, "");
  EXPECT_THAT(run.Plate().Find("A3")->targets, ElementsAre(Target{"T", "UNKN", {}, ""}));
  EXPECT_EQ(CountOf(report.losses, "readings of an amplification without a cycle"), 1U);
  EXPECT_EQ(CountOf(report.losses, "plate formats"), 1U);
}

TEST_F(RdmlImport, EveryElementThatADocumentCannotHoldIsListed) {
  ForeignRdml rdml;
  rdml.samples +=
      "<sample id=\"spare\"><type>pos</type><cdnaSynthesisMethod><enzyme>RT</enzyme>"
      "</cdnaSynthesisMethod></sample>";
  rdml.runs = rdml.Run("r", rdml.React(1, "S1",
                                       "<data><tar id=\"MYC\"/><cq>17.5</cq><excl>bubble</excl>"
                                       "<adp><cyc>1</cyc><fluor>1</fluor></adp>"
                                       "<adp><cyc>1.5</cyc><fluor>2</fluor></adp>"
                                       "<adp><cyc>2</cyc><fluor>1e300</fluor></adp></data>"));
  const ImportReport report = import(rdml.Text());
  EXPECT_EQ(CountOf(report.losses, "elements experiment/run/react/data/cq"), 1U);
  EXPECT_EQ(CountOf(report.losses, "elements experiment/run/react/data/excl"), 1U);
  EXPECT_EQ(CountOf(report.losses, "elements sample/cdnaSynthesisMethod/enzyme"), 1U);
  EXPECT_EQ(CountOf(report.losses, "elements sample/quantity/unit"), 1U);
  EXPECT_EQ(CountOf(report.losses, "samples that are in no well"), 3U);
  EXPECT_EQ(CountOf(report.losses, "readings whose cycle is not a whole number"), 1U);
  EXPECT_EQ(CountOf(report.losses, "readings beyond 1e12"), 1U);
}

TEST_F(RdmlImport, SeveralDyesInAWellBecomeChannels) {
  ForeignRdml rdml;
  rdml.runs = rdml.Run("r", rdml.React(1, "S1", rdml.Data("MYC", 10) + rdml.Data("ACT", 50)) +
                                rdml.React(2, "S2", rdml.Data("ACT", 70)));
  import(rdml.Text());
  const RunReader run(target_);
  const Readings readings = run.Readings();
  ASSERT_TRUE(readings.Meaning());
  EXPECT_THAT(readings.Meaning()->channels, ElementsAre("FAM", "VIC"));
  EXPECT_EQ(readings.Fluorescence(0, 0, 0), 11.0);
  EXPECT_EQ(readings.Fluorescence(0, 0, 1), 51.0);
  EXPECT_EQ(readings.Fluorescence(0, 1, 0), std::nullopt);
  EXPECT_EQ(readings.Fluorescence(2, 1, 1), 73.0);
  EXPECT_THAT(run.Settings(),
              testing::Contains(SettingValue{"endogenous-control", std::string("ACT")}));
}

TEST_F(RdmlImport, PartsOfOnePlateBecomeOneRun) {
  ForeignRdml rdml;
  const std::string melt =
      "<data><tar id=\"MYC\"/><mdp><tmp>65</tmp><fluor>9</fluor></mdp>"
      "<mdp><tmp>65.5</tmp><fluor>8</fluor></mdp></data>";
  rdml.runs = rdml.Run("fam", rdml.React(1, "S1", rdml.Data("MYC", 10))) +
              rdml.Run("vic", rdml.React(1, "S1", rdml.Data("ACT", 50))) +
              rdml.Run("melt", rdml.React(1, "S1", melt));
  const ImportReport report = import(rdml.Text());
  EXPECT_EQ(report.documents.size(), 1U);
  EXPECT_EQ(report.notes.size(), 2U);
  const Readings readings = RunReader(target_).Readings();
  EXPECT_EQ(readings.FrameCount(), 5U);
  EXPECT_EQ(readings.Fluorescence(0, 0, 1), 51.0);
  EXPECT_EQ(readings.Axis()[4].stage, Stage::kMelting);
  EXPECT_EQ(readings.Axis()[4].temperature, 65.5);
  EXPECT_EQ(readings.Fluorescence(4, 0, 0), 8.0);
  EXPECT_EQ(import(rdml.Text(), {.replace = true, .separate = true}).documents.size(), 3U);
}

TEST_F(RdmlImport, PlatesOfTheSameTargetStayApart) {
  ForeignRdml rdml;
  rdml.runs = rdml.Run("one", rdml.React(1, "S1", rdml.Data("MYC", 10))) +
              rdml.Run("two", rdml.React(1, "S1", rdml.Data("MYC", 50)));
  const ImportReport report = import(rdml.Text());
  ASSERT_EQ(report.documents.size(), 2U);
  EXPECT_EQ(report.documents[0].path, folder_ / "out-1.vex");
  EXPECT_EQ(report.documents[1].run, "two");
  EXPECT_EQ(RunReader(report.documents[1].path).Readings().Fluorescence(0, 0), 51.0);
  EXPECT_FALSE(std::filesystem::exists(target_));
  const Error error = ErrorOf([&] { import(rdml.Text(), {}); });
  EXPECT_EQ(error.Code(), ErrorCode::kExists);
}

TEST_F(RdmlImport, FullDiskLeavesNoneOfSeveralDocuments) {
  ForeignRdml rdml;
  rdml.runs = rdml.Run("r1", rdml.React(1, "S1", rdml.Data("MYC", 10))) +
              rdml.Run("r2", rdml.React(2, "S2", rdml.Data("MYC", 20)));
  WriteText(source_, rdml.Text());
  int refused = 0;
  for (int after = 0;; ++after) {
    FaultyFileSystem disk;
    disk.FailKind(FileCall::write, ENOSPC, after);
    try {
      ASSERT_EQ(Import(source_, target_).documents.size(), 2U);
      EXPECT_FALSE(disk.WasRefused(FileCall::write));
      break;
    } catch (const Error& error) {
      EXPECT_EQ(error.Code(), ErrorCode::kDiskFull);
      EXPECT_THAT(error.what(), testing::ContainsRegex("out-[12].vex: No space left on device"));
      EXPECT_EQ(FileNames(std::filesystem::path(source_).parent_path()),
                std::vector<std::string>{"in.rdml"})
          << after;
      ++refused;
    }
  }
  EXPECT_GE(refused, 2);  // in the first document, and in the second
  EXPECT_TRUE(RunReader(folder_ / "out-1.vex").IsWhole());
  EXPECT_TRUE(RunReader(folder_ / "out-2.vex").IsWhole());
}

TEST_F(RdmlImport, SeveralRunsCanBecomeAStudy) {
  ForeignRdml rdml;
  rdml.runs = rdml.Run("one", rdml.React(1, "S1", rdml.Data("MYC", 10))) +
              rdml.Run("one", rdml.React(1, "S2", rdml.Data("MYC", 50)));
  import(rdml.Text(), {.replace = true, .study = true});
  const RunReader study(target_);
  EXPECT_TRUE(study.IsStudy());
  EXPECT_THAT(study.PlateNames(), ElementsAre("one", "one-2"));
  EXPECT_EQ(study.Plate("one-2").Readings().Fluorescence(0, 0), 51.0);
}

TEST_F(RdmlImport, NegativeAndTinyReadingsKeepWhat16BitsHold) {
  ForeignRdml rdml;
  const auto imported = [&](const std::vector<std::string>& readings) {
    std::string points;
    for (std::size_t i = 0; i < readings.size(); ++i) {
      points +=
          "<adp><cyc>" + std::to_string(i + 1) + "</cyc><fluor>" + readings[i] + "</fluor></adp>";
    }
    rdml.runs = rdml.Run("r", rdml.React(1, "S1", "<data><tar id=\"MYC\"/>" + points + "</data>"));
    return import(rdml.Text());
  };
  EXPECT_THAT(imported({"-5.25", "0", "12.5"}).losses.List(),
              testing::Not(testing::Contains(testing::Field(&Loss::isChanged, true))));
  EXPECT_EQ(RunReader(target_).Readings().Fluorescence(0, 0), -5.25);
  imported({"0.00001", "0.00065", "0.0123"});
  EXPECT_EQ(RunReader(target_).Readings().Fluorescence(0, 0), 0.00001);
  EXPECT_EQ(RunReader(target_).Readings().Fluorescence(2, 0), 0.0123);
  const ImportReport report = imported({"1.123456789", "2.987654321", "65000.5"});
  EXPECT_EQ(CountOf(report.losses, "readings, rounded to 16 bits"), 3U) << TextOf(report.losses);
}

TEST_F(RdmlImport, MeltingsAreAlignedByTemperature) {
  ForeignRdml rdml;
  const auto melt = [](const std::vector<int>& temperatures) {
    std::string text = "<data><tar id=\"MYC\"/>";
    for (const int one : temperatures) {
      text += "<mdp><tmp>" + std::to_string(one) + ".1</tmp><fluor>" + std::to_string(one) +
              "</fluor></mdp>";
    }
    return text + "</data>";
  };
  rdml.runs = rdml.Run(
      "r", rdml.React(1, "S1", melt({60, 61, 62, 63, 64})) + rdml.React(2, "S2", melt({61, 64})));
  import(rdml.Text());
  const Readings readings = RunReader(target_).Readings();
  ASSERT_EQ(readings.FrameCount(), 5U);
  EXPECT_EQ(readings.Fluorescence(0, 1), std::nullopt);
  EXPECT_EQ(readings.Fluorescence(1, 1), 61.0);
  EXPECT_EQ(readings.Fluorescence(4, 1), 64.0);
}

TEST_F(RdmlImport, ProgramsComeBackStepByStep) {
  ForeignRdml rdml;
  rdml.version = "1.3";
  rdml.conditions =
      "<thermalCyclingConditions id=\"fast\"><description>two steps</description>"
      "<lidTemperature>105</lidTemperature>"
      "<step><nr>1</nr><temperature><temperature>95</temperature><duration>600</duration>"
      "</temperature></step>"
      "<step><nr>2</nr><description>anneal, read</description><gradient><highTemperature>65"
      "</highTemperature><lowTemperature>55.5</lowTemperature><duration>15</duration>"
      "<measure>real time</measure><ramp>1.5</ramp></gradient></step>"
      "<step><nr>3</nr><loop><goto>2</goto><repeat>39</repeat></loop></step>"
      "<step><nr>4</nr><pause><temperature>4</temperature></pause></step>"
      "<step><nr>5</nr><lidOpen/></step></thermalCyclingConditions>";
  rdml.format = "<thermalCyclingConditions id=\"fast\"/>" + rdml.format;
  import(rdml.Text());
  const auto program = RunReader(target_).Program();
  ASSERT_TRUE(program && program->text);
  EXPECT_EQ(*program->text,
            "name=fast\ndescription=two steps\nlid=105\n1 temperature=95 seconds=600\n"
            "2 high=65 low=55.5 seconds=15 measure=real-time ramp=1.5 description=anneal, read\n"
            "3 goto=2 repeat=39\n4 pause=4\n5 lid=open\n");
  const std::string archive =
      ExportTo(target_, folder_ / "back.rdml", {.plate = {}, .embedsDocument = false});
  const std::string xml = ReadMember(archive, "rdml_data.xml");
  EXPECT_THAT(xml, HasSubstr("<highTemperature>65</highTemperature>"));
  EXPECT_THAT(xml, HasSubstr("<lidOpen/>"));
  if (HasSchemaCheck()) {
    WriteText(folder_ / "back.xml", xml);
    EXPECT_EQ(SchemaFaults(folder_ / "back.xml"), "");
  }
}

TEST_F(RdmlImport, NamesBeyondLatin1StayApart) {
  ForeignRdml rdml;
  rdml.targets =
      "<target id=\"\u03B2-actin\"><type>toi</type><dyeId id=\"FAM\"/></target>"
      "<target id=\"\u6F22\"><type>toi</type><dyeId id=\"VIC\"/></target>"
      "<target id=\"\u5B57\"><type>toi</type><dyeId id=\"VIC\"/></target>";
  rdml.runs = rdml.Run("r", rdml.React(1, "S1", rdml.Data("\u03B2-actin", 1)) +
                                rdml.React(2, "S2", rdml.Data("\u6F22", 2)) +
                                rdml.React(3, "S2", rdml.Data("\u5B57", 2)));
  const ImportReport report = import(rdml.Text());
  const RunReader run(target_);
  EXPECT_EQ(run.Plate().Find("A1")->targets[0].detector, "beta-actin");
  EXPECT_EQ(run.Plate().Find("A2")->targets[0].detector, "?");
  EXPECT_EQ(run.Plate().Find("A3")->targets[0].detector, "? (2)");
  EXPECT_EQ(CountOf(report.losses, "names of targets"), 3U);
}

TEST_F(RdmlImport, OddPlatesKeepPlacesOrNumbers) {
  ForeignRdml rdml;
  const auto imported = [&](int rows, int columns, int well) {
    rdml.format = "<pcrFormat><rows>" + std::to_string(rows) + "</rows><columns>" +
                  std::to_string(columns) + "</columns></pcrFormat>";
    rdml.runs = rdml.Run("r", rdml.React(well, "S1", rdml.Data("MYC", 1)));
    import(rdml.Text());
    return RunReader(target_).Wells().front();
  };
  EXPECT_EQ(imported(6, 8, 9), 13);    // B1
  EXPECT_EQ(imported(72, 1, 72), 72);  // a rotor with 72 tubes
  EXPECT_EQ(imported(1, 36, 30), 30);
  EXPECT_EQ(imported(16, 24, 384), 384);
  EXPECT_THAT(ErrorOf([&] { imported(72, 72, 1); }).Message(), HasSubstr("up to 384 wells"));
  EXPECT_THAT(ErrorOf([&] { imported(8, 12, 97); }).Message(), HasSubstr("not on the plate"));
}

TEST_F(RdmlImport, ErrorsNameLineAndElement) {
  const std::string text = ForeignRdml().Text();
  const auto changed = [&](const std::string& from, const std::string& to) {
    std::string result = "<?xml version=\"1.0\"?>\n" + text;
    return result.replace(result.find(from), from.size(), to);
  };
  EXPECT_EQ(refusalOf(changed("<cyc>1</cyc>", "\n<cyc>one</cyc>")).Message(),
            "line 3, element cyc: 'one' is no number");
  EXPECT_EQ(refusalOf(changed("<type>std</type>", "<type>standard</type>")).Message(),
            "line 2, element type: 'standard' is no type of a sample");
  EXPECT_EQ(refusalOf(changed("react id=\"1\"", "react id=\"zero\"")).Message(),
            "line 2, element react: 'zero' is no number of a well");
  EXPECT_THAT(refusalOf(changed("</sample", "<sample")).Message(), HasSubstr("no well-formed XML"));
  EXPECT_THAT(refusalOf(changed("</rdml>", "")).Message(), HasSubstr("no well-formed XML"));
  EXPECT_THAT(refusalOf(changed("version=\"1.2\"", "version=\"2.0\"")).Message(),
              HasSubstr("its version is '2.0'"));
  EXPECT_THAT(refusalOf("<?xml version=\"1.0\"?><html/>").Message(),
              HasSubstr("this is no RDML: its root is not the element rdml"));
  EXPECT_THAT(refusalOf("well;sample\n").Message(), HasSubstr("in none of the formats"));
}

TEST_F(RdmlImport, EntitiesDepthAndHugeTagsAreRefused) {
  EXPECT_THAT(refusalOf("<!DOCTYPE rdml [<!ENTITY a \"ha\"><!ENTITY b \"&a;&a;&a;\">]>"
                        "<rdml version=\"1.2\"><id>&b;</id></rdml>")
                  .Message(),
              HasSubstr("declares the entity 'a'"));
  EXPECT_THAT(refusalOf("<!DOCTYPE rdml [<!ENTITY f SYSTEM \"file:///etc/passwd\">]>"
                        "<rdml version=\"1.2\"><id>&f;</id></rdml>")
                  .Message(),
              HasSubstr("declares the entity 'f'"));
  std::string deep = "<rdml version=\"1.2\">";
  for (int i = 0; i < 1000; ++i) deep += "<a>";
  EXPECT_THAT(refusalOf(deep).Message(), HasSubstr("nest more than 64 deep"));
  const std::string huge(XmlReader::kMostToken + (1U << 20U), 'a');
  EXPECT_THAT(refusalOf("<rdml version=\"1.2\" a=\"" + huge).Message(), HasSubstr("too long"));
  EXPECT_THAT(refusalOf("<rdml version=\"1.2\"><id>" + huge + "</id></rdml>").Message(),
              HasSubstr("too long"));
}

TEST_F(RdmlImport, ZipBombsAndDamagedArchivesAreRefused) {
  const std::string blanks = "<!--" + std::string(1U << 20U, ' ') + "-->";
  ZipWriter zip;
  zip.Add("rdml_data.xml", [&, turn = 0](std::string& piece) mutable {
    piece = turn == 0 ? "<rdml version=\"1.2\">" : blanks;
    return ++turn < 64;
  });
  {
    std::ofstream out(source_, std::ios::binary);
    zip.Write(out, source_);
  }
  EXPECT_LT(std::filesystem::file_size(source_), 100'000U);
  EXPECT_THAT(ErrorOf([&] { Import(source_, target_); }).Message(),
              testing::ContainsRegex("unpacks to more than [0-9]+ bytes, so it is not read"));
  WriteZip(source_, {{"rdml_data.xml", ForeignRdml().Text()}});
  Bytes bytes = ReadBytes(source_);
  for (std::size_t size = 4; size < bytes.size(); size += 37) {
    Bytes part(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
    WriteBytes(source_, part);
    ErrorOf([&] { Import(source_, target_); });
  }
  EXPECT_FALSE(std::filesystem::exists(target_));
}

}  // namespace
