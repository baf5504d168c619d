// Tests the commands wells, detectors, dyes and calibration.
#include "lab/text/Chart.h"
#include "lab/text/PlateGrid.h"
#include "tests/tools/DocumentFixture.h"

namespace vex2::test {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* kColumns = "well,sample,target,task,quantity,reporter\n";

std::string TagsInOrder(const Vex2FileManager& document) {
  std::string tags;
  for (int index = 0; index < document.GetAllComponentCount(); ++index) {
    if (index > 0) tags += ' ';
    tags += document.GetComponent(index)->GetTag();
  }
  return tags;
}

std::string textOf(const std::filesystem::path& path) {
  const Bytes bytes = ReadBytes(path.string());
  return {bytes.begin(), bytes.end()};
}

class PlateCommands : public DocumentTest {
 protected:
  // Makes a simulated run of two cycles and its wells file.
  void Simulate() { Output({"simulate", path_, "--cycles", "2", "--wells-out", wells_}); }
  void WriteWellsFile(const std::string& rows) { WriteBytes(wells_, ToBytes(kColumns + rows)); }
  std::string Raw() const { return Output({"export", path_, "--raw"}); }

  const std::string wells_ = folder_ / "wells.csv";
};

using Wells = PlateCommands;

TEST_F(Wells, OfARecordedRunAreThoseOfItsFile) {
  Simulate();
  EXPECT_EQ(Output({"wells", path_, "--csv"}), textOf(wells_));
}

TEST_F(Wells, FileOfTheSampleRunComesOutUnchanged) {
  const auto readings = SampleFiles("real", "-readings.csv");
  if (readings.empty()) GTEST_SKIP() << "needs the sample readings";
  for (const auto& file : readings) {
    std::string wells = file.string();
    wells.replace(wells.rfind("readings"), 8, "wells");
    std::filesystem::remove(path_);
    Output({"record", path_, "--readings", file.string(), "--wells", wells});
    EXPECT_EQ(Output({"wells", path_, "--csv"}), textOf(wells));
  }
}

TEST_F(Wells, RunHasDetectorsDyesCalibrationAndUsageBeforeItsReadings) {
  Simulate();
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), 0);
  EXPECT_EQ(TagsInOrder(document), "GLBL TPro CELS DETL RqDy CALI RAWa");
  Vex2Detector* detectors = nullptr;
  ASSERT_EQ(document.GetDetectorListInfo(detectors), 0);
  EXPECT_EQ(detectors[0].name, "target A");
  EXPECT_EQ(detectors[0].reporterDye, "green");
  delete[] detectors;
  EXPECT_EQ(document.GetPureDyeCount(), 4);
  bool* usage = nullptr;
  ASSERT_TRUE(document.GetUsageArray(usage));
  EXPECT_TRUE(std::all_of(usage, usage + 96, [](bool used) { return used; }));
  delete[] usage;
}

TEST_F(Wells, AreReplacedFromAFileAndComeOutAgain) {
  Simulate();
  const std::string raw = Raw();
  WriteWellsFile(
      "A1,\"a, b\",MYC,STND,0.008,FAM\nA1,\"a, "
      "b\",ACTB,ENDO,,VIC\nB12,gr\xc3\xbcn,,,,\nH12,,MYC,NTC,0,FAM\n");
  const Bytes before = ReadBytes(path_);
  EXPECT_THAT(Output({"wells", path_, "--from", wells_, "--dry-run"}),
              testing::EndsWith("(dry run: nothing was changed)\n"));
  EXPECT_EQ(ReadBytes(path_), before);
  EXPECT_THAT(Output({"wells", path_, "--from", wells_}), HasSubstr("wells set up: 96 -> 3\n"));
  EXPECT_EQ(Output({"wells", path_, "--csv"}), textOf(wells_));
  EXPECT_EQ(Raw(), raw);
  EXPECT_THAT(Output({"dyes", path_}), testing::EndsWith("green\nFAM\nVIC\n"));
  const auto json = JsonOutput({"wells", path_, "--json"});
  EXPECT_EQ(json["wells"].size(), 3U);
  EXPECT_EQ(json["wells"][0]["detectors"][0]["quantity"], 0.008);
  EXPECT_TRUE(json["wells"][0]["detectors"][1]["quantity"].is_null());
  EXPECT_THAT(Output({"wells", path_, "--show", "detector"}), HasSubstr("MYC+ACTB"));
}

TEST_F(Wells, OfADocumentWithoutASetupAreAskedFor) {
  MakeRun();
  ExpectRefused({"wells", path_}, 1, "it has no plate setup");
  WriteWellsFile("A1,a,,,,\n");
  Output({"wells", path_, "--from", wells_});
  EXPECT_EQ(Output({"wells", path_, "--csv"}), textOf(wells_));
  EXPECT_EQ(TreeOutput({path_}).back()["tag"], "RAWa");
}

TEST_F(Wells, OfARunInProgressStay) {
  MakeRun("PROG");
  WriteWellsFile("A1,a,,,,\n");
  ExpectRefused({"wells", path_, "--from", wells_}, 1, "its run is in progress");
}

// Changes the plate in the header: an unknown type with this number of rows and columns.
void SetPlate(const std::string& path, std::uint8_t rows, std::uint16_t columns) {
  constexpr std::size_t kTypeAt = 16;
  constexpr std::size_t kRowsAt = 20;
  Bytes bytes = ReadBytes(path);
  std::fill_n(bytes.begin() + kTypeAt, kRowsAt - kTypeAt, std::uint8_t{'x'});
  const std::uint8_t size[] = {0, rows, static_cast<std::uint8_t>(columns >> 8U),
                               static_cast<std::uint8_t>(columns & 0xFFU)};
  std::copy(std::begin(size), std::end(size), bytes.begin() + kRowsAt);
  WriteBytes(path, bytes);
}

TEST_F(Wells, ReplacedByATableKeepWhatTheTableDoesNotShow) {
  Simulate();
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), 0);
  Vex2PlateSetup setup;
  ASSERT_EQ(document.GetPlateSetupInfo(&setup), 0);
  setup.cells[0].SetDescription("repeat", 6);
  setup.cells[0].flag = false;
  ASSERT_FALSE(setup.cells[1].detectors.IsEmpty());
  setup.cells[1].detectors.GetHead()->used = false;
  ASSERT_EQ(document.ReplacePlateSetup(&setup), 0);
  ASSERT_EQ(document.SaveToFile(path_.c_str()), 0);
  const auto before = TreeOutput({path_, "--only", "CELS"});
  const std::string table = folder_ / "same.csv";
  WriteBytes(table, ToBytes(Output({"wells", path_, "--csv"})));
  Output({"wells", path_, "--from", table});
  const auto after = TreeOutput({path_, "--only", "CELS"});
  EXPECT_EQ(after[0]["length"], before[0]["length"]);
  const auto& children = after[0]["children"];
  EXPECT_EQ(children[0]["flag"], before[0]["children"][0]["flag"]);
  EXPECT_THAT(children[0].dump(), HasSubstr("repeat"));
  // Only the last record of the cell, because offsets of the records change.
  const auto first = [](const nlohmann::json& cell) { return cell["children"].back()["children"]; };
  EXPECT_EQ(first(children[1]).back()["value"], 0) << first(children[1]).dump();
}

TEST_F(Wells, OfMoreThanASetupHoldsAreRefused) {
  Simulate();
  SetPlate(path_, 200, 328);  // 65600 wells, 64 more than 65536
  const Bytes before = ReadBytes(path_);
  const std::string why = "its plate of 200 rows and 328 columns has more wells than a setup holds";
  ExpectRefused({"wells", path_}, 1, why);
  const CommandResult asJson = RunVex({"wells", path_, "--json"});
  EXPECT_EQ(asJson.exitCode, 1);
  EXPECT_EQ(nlohmann::json::parse(asJson.errors)["error"]["message"], why);
  ExpectRefused({"wells", path_, "--from", wells_}, 1, why);
  EXPECT_EQ(RunVex({"wells", path_, "--csv"}).output, "");
  EXPECT_EQ(ReadBytes(path_), before);
}

TEST_F(Wells, OfAPlateWithoutColumnsAreShown) {
  Simulate();
  SetPlate(path_, 8, 0);
  EXPECT_THAT(Output({"wells", path_}), testing::StartsWith("0 wells, 96 set up"));
}

TEST_F(Wells, FileThatContradictsItselfNamesItsRow) {
  Simulate();
  for (const auto& [rows, why] :
       {std::pair("Q1,a,,,,\n", "row 2"), std::pair("A1,a,,,,\nA1,b,T,,,\n", "not the sample"),
        std::pair("A1,a,T,,,\nA1,a,T,,,\n", "twice"),
        std::pair("A1,a,,,,FAM\n", "a reporter without a target"),
        std::pair("A1,a,T,,,FAM\nA2,a,T,,,VIC\n", "row 3"),
        std::pair("A1,\xe2\x82\xac,,,,\n", "Latin-1"), std::pair("A1,a,T,,much,\n", "row 2")}) {
    WriteWellsFile(rows);
    const CommandResult result = RunVex({"wells", path_, "--from", wells_});
    EXPECT_EQ(result.exitCode, 1) << rows;
    EXPECT_THAT(result.errors, HasSubstr(why));
  }
  WriteWellsFile("P24,a,,,,\n");
  const CommandResult result = RunVex({"wells", path_, "--from", wells_});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.errors, HasSubstr("well P24 is not on the document's plate of 96 wells"));
}

TEST_F(Wells, PipedGridHasNoColoursAndWholeTexts) {
  Simulate();
  const std::string grid = Output({"wells", path_});
  EXPECT_THAT(grid, Not(HasSubstr("\x1b")));
  EXPECT_THAT(grid, HasSubstr("A dilution 1"));
  EXPECT_EQ(std::count(grid.begin(), grid.end(), '\n'), 10);
}

// Uses a fixed width and colours instead of those of a terminal.
TEST(PlateGrid, ShowsNothingForEmptyWells) {
  std::vector<std::string> texts(96);
  texts[13] = "x";
  const std::string grid = lab::DrawPlate(lab::kPlate96, texts, lab::TextForm());
  EXPECT_THAT(grid, HasSubstr("\nB ·  x  ·"));
}

TEST(Sparkline, ReachesFromTheLowestToTheHighestBlock) {
  EXPECT_EQ(lab::Sparkline({0, 4, 8}, lab::TextForm()), "▁▄█");
  EXPECT_EQ(lab::Sparkline({0, 0}, lab::TextForm()), "▁▁");
  EXPECT_EQ(lab::Sparkline({}, lab::TextForm()), "");
  EXPECT_EQ(lab::Sparkline({NAN, 1}, lab::TextForm()), " █");
  EXPECT_EQ(lab::Sparkline({-8, 0, 8}, lab::TextForm()), "▁▄█");
}

using Detectors = PlateCommands;

TEST_F(Detectors, AreAddedChangedAndRemoved) {
  Simulate();
  const std::string raw = Raw();
  EXPECT_EQ(Output({"detectors", path_, "--add", "name=MYC", "reporter=FAM", "color=#00ff7f",
                    "threshold=0.3", "auto-baseline=1", "name=target A", "quencher=NFQ", "--remove",
                    "target B"}),
            "removed target B; 12 wells still name it, without a reporter now\nadded MYC\n"
            "changed target A\n");
  const auto list = JsonOutput({"detectors", path_, "--json"})["detectors"];
  ASSERT_EQ(list.size(), 8U);
  EXPECT_EQ(list[6]["name"], "MYC");
  EXPECT_EQ(list[6]["color"], "#00ff7f");
  EXPECT_EQ(list[6]["threshold"], 0.3);
  EXPECT_EQ(list[6]["auto-baseline"], 1);
  EXPECT_EQ(list[7]["name"], "target A");
  EXPECT_EQ(list[7]["reporter"], "green") << "fields that are not given stay";
  EXPECT_EQ(list[7]["quencher"], "NFQ");
  EXPECT_EQ(Raw(), raw);
  EXPECT_THAT(Output({"detectors", path_, "--csv"}),
              HasSubstr("\nMYC,FAM,,,,,,#00ff7f,0,0,6,15,0.3,1,0,0\n"));
  EXPECT_THAT(Output({"detectors", path_}), HasSubstr("auto 6-15"));
}

TEST_F(Detectors, WrongFieldsAreRefusedAndNothingChanges) {
  Simulate();
  const Bytes before = ReadBytes(path_);
  ExpectRefused({"detectors", path_, "--add", "reporter=FAM"}, 2,
                "stands before the detector's name=");
  ExpectRefused({"detectors", path_, "--add", "name=A", "colour=red"}, 2,
                "unknown field 'colour' of a detector; did you mean 'color'?");
  ExpectRefused({"detectors", path_, "--add", "name=A", "color=red"}, 2, "it takes three bytes");
  ExpectRefused({"detectors", path_, "--add", "name="}, 2, "names no detector");
  ExpectRefused({"detectors", path_, "--add", "A"}, 2, "is not of the form key=value");
  ExpectRefused({"detectors", path_, "--add", "name=A", "baseline-end=65536"}, 2,
                "it takes 0 to 65535");
  ExpectRefused({"detectors", path_, "--remove", "none"}, 2, "it has no detector 'none'");
  EXPECT_EQ(ReadBytes(path_), before);
}

TEST_F(Detectors, OfADocumentWithoutAnyAreNone) {
  MakeRun();
  EXPECT_EQ(Output({"detectors", path_}), "no detectors\n");
  EXPECT_TRUE(JsonOutput({"detectors", path_, "--json"})["detectors"].empty());
}

using Dyes = PlateCommands;

TEST_F(Dyes, AreAddedAndRemoved) {
  MakeRun();
  EXPECT_EQ(Output({"dyes", path_}), "no required dyes\n");
  EXPECT_EQ(Output({"dyes", path_, "--add", "FAM", "fam"}), "added FAM\nadded fam\n");
  EXPECT_EQ(Output({"dyes", path_, "--add", "ROX", "--remove", "FAM"}), "removed FAM\nadded ROX\n");
  EXPECT_EQ(Output({"dyes", path_, "--csv"}), "dye\nfam\nROX\n");
  ExpectRefused({"dyes", path_, "--add", "ROX"}, 2, "it has the dye 'ROX' already");
  ExpectRefused({"dyes", path_, "--remove", "FAM"}, 2, "it requires no dye 'FAM'");
  ExpectRefused({"dyes", path_, "--add", ""}, 2, "a dye needs a name");
}

using CalibrationTest = PlateCommands;

TEST_F(CalibrationTest, IsExportedAndImportedWithoutLoss) {
  Simulate();
  const std::string table = Output({"calibration", path_, "--export", "-"});
  EXPECT_EQ(table, Output({"calibration", path_, "--export", "csv"}));
  EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 6);
  const std::string file = folder_ / "calibration.csv";
  Output({"calibration", path_, "--export", file});
  EXPECT_EQ(textOf(file), table);

  const std::string other = folder_ / "other.vex";
  Vex2FileManager document;
  Vex2PureDye head;
  head.setting = 77;
  head.extra1[0] = 5;
  ASSERT_EQ(document.ReplacePureDye(&head), 0);
  ASSERT_EQ(document.SaveToFile(other.c_str()), 0);
  EXPECT_EQ(Output({"calibration", other, "--import", file}),
            "pure dyes: 0 -> 4 spectra\nbackground: 0 -> 1 spectrum\n");
  EXPECT_EQ(Output({"calibration", other, "--export", "-"}), table);
  const auto json = JsonOutput({"calibration", other, "--json"});
  EXPECT_EQ(json["pureDyes"]["setting"], 77) << "the head stays";
  EXPECT_EQ(json["pureDyes"]["extra1"], "05000000");
  EXPECT_EQ(json["background"]["spectra"][0]["limit"], 189);
}

TEST_F(CalibrationTest, OfSampleDocumentsComesBackByteForByte) {
  const auto samples = SampleFiles("golden", ".vex");
  if (samples.empty()) GTEST_SKIP() << "needs the sample documents";
  for (const char* name : {"08-calibration.vex", "13-whole-document.vex"}) {
    // Writes the bytes instead of copying the file, because the copy of a read-only sample would be
    // read-only, too.
    WriteBytes(path_, ReadBytes(SampleFolder() / "golden" / name));
    Vex2FileManager before;
    EXPECT_EQ(before.ReadFromFile(path_.c_str()), kSuccess);
    const std::string file = folder_ / "calibration.csv";
    Output({"calibration", path_, "--export", file, "--force"});
    Output({"calibration", path_, "--import", file});
    Output({"calibration", path_, "--import", file});
    EXPECT_EQ(Output({"calibration", path_, "--export", "-"}), textOf(file)) << name;
  }
}

TEST_F(CalibrationTest, TableThatIsWrongNamesItsRow) {
  Simulate();
  const std::string columns =
      "part,name,dye_index,key1,key2,byte1,byte2,param1,param2,param3,limit,values\n";
  const std::string file = folder_ / "calibration.csv";
  for (const auto& [row, why] :
       {std::pair("dark,a,0,0,0,0,0,0,0,0,0,1\n", "neither"),
        std::pair("pure-dye,a,0,0,0,256,0,0,0,0,0,1\n", "row 2"),
        std::pair("background,a,0,0,0,,,,,,1,1 x\n", "'x'"), std::pair("", "holds no spectra")}) {
    WriteBytes(file, ToBytes(columns + row));
    const CommandResult result = RunVex({"calibration", path_, "--import", file});
    EXPECT_EQ(result.exitCode, 1) << row;
    EXPECT_THAT(result.errors, HasSubstr(why));
  }
  ExpectRefused({"calibration", path_, "--export", path_}, 2, "is also an input");
}

TEST_F(CalibrationTest, IsShownWithSmallSpectra) {
  MakeRun();
  EXPECT_EQ(Output({"calibration", path_}), "no calibration\n");
  std::filesystem::remove(path_);
  Output({"simulate", path_, "--cycles", "1"});
  EXPECT_THAT(Output({"calibration", path_}), HasSubstr("▄██▄▂▁▁▁▁▁▁▁\n"));
}

}  // namespace
}  // namespace vex2::test
