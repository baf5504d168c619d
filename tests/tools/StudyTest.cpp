#include <sys/stat.h>
#include <utime.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "lab/model/Study.h"
#include "tests/tools/StudyFixture.h"
#include "vex2/manager/Vex2FileManagerComponent.h"

using nlohmann::json;
using testing::HasSubstr;

namespace vex2::test {

class Study : public StudyTest {};

TEST_F(Study, ANewOneHasItsPlatesInOrderAndTheirType) {
  EXPECT_EQ(Output({"study", "new", study_, plate2_, plate1_}),
            "+ plate2: 96 wells, 1 frame\n+ plate1: 96 wells, 1 frame\n");
  Vex2FileManager study;
  ASSERT_EQ(study.ReadFromFile(study_.c_str()), 0);
  EXPECT_TRUE(study.IsRQS());
  EXPECT_EQ(study.GetPlateSize(), 96);
  EXPECT_TRUE(study.IsAcquisitionZero());
  CStringList names;
  CStringList dates;
  ASSERT_TRUE(study.GetMultiPlateList(names, dates));
  ASSERT_EQ(names.GetCount(), 2);
  POSITION at = names.GetHeadPosition();
  EXPECT_EQ(names.GetNext(at), "plate2");
  EXPECT_EQ(names.GetNext(at), "plate1");
  ASSERT_NE(study.GetSinglePlatePtrByName("plate1"), nullptr);
  EXPECT_EQ(study.GetSinglePlatePtrByName("plate1")->GetDataFrameCount(DataRAWa), 1);
}

TEST_F(Study, APlateKeepsWhenItsFileWasLastChangedInLocalTime) {
  ::setenv("TZ", "UTC0", 1);
  const utimbuf times{1046873220, 1046873220};
  ASSERT_EQ(::utime(plate1_.c_str(), &times), 0);
  Output({"study", "new", study_, plate1_});
  EXPECT_EQ(plates()[0]["modified"], "2003-03-05T14:07");
}

TEST_F(Study, IsListedForPeopleAndForPrograms) {
  makeStudy();
  const std::string text = Output({"study", "list", study_});
  EXPECT_THAT(text, testing::StartsWith(study_ + ": 2 plates\n  name    wells  frames  run"));
  EXPECT_THAT(text, HasSubstr("\n  plate2     96       1  ZERO  "));
  const json list = plates();
  ASSERT_EQ(list.size(), 2U);
  EXPECT_EQ(list[0]["name"], "plate1");
  EXPECT_EQ(list[1]["name"], "plate2");
  EXPECT_EQ(list[1]["wells"], 96);
  EXPECT_EQ(list[1]["frames"], 1);
  EXPECT_EQ(list[0]["offset"].get<int>() + list[0]["size"].get<int>(), list[1]["offset"]);
}

TEST_F(Study, AStudyThatWasReadKnowsThatItsNamesAreTaken) {
  makeStudy();
  std::filesystem::create_directory(folder_ / "other");
  const std::string other = folder_ / "other/plate1.vex";
  makePlate(other, "of the same name");
  expectStudyRefuses({"study", "add", study_, other}, other, 1,
                     "the study has a plate 'plate1' already");
}

TEST_F(Study, OneRefusedPlateLeavesTheStudyAsItWas) {
  makeStudy();
  const std::string plate3 = folder_ / "plate3.vex";
  makePlate(plate3, "third");
  const std::string text = folder_ / "text.vex";
  WriteBytes(text, ToBytes("no document"));
  expectStudyRefuses({"study", "add", study_, plate3, text}, text, 1,
                     "this is not a plate document");
  Output({"study", "add", study_, plate3});
  EXPECT_EQ(plates().size(), 3U);
}

TEST_F(Study, RefusedPlateIsReportedAndMakesNoStudy) {
  const std::string odd = folder_ / "odd.vex";
  const auto refused = [&](const std::string& text) {
    expectStudyRefuses({"study", "new", study_, plate1_, odd}, odd, 1, text);
  };
  makePlate(odd, "", "p9C ", "Blue");
  refused("its kind is 'Blue'; the plates of a study are of kind 'Kest'");
  makePlate(odd, "", "p3C ");
  refused("a plate of 384 wells cannot be in a study of plates of 96 wells");
  std::filesystem::remove(odd);
  Output({"study", "new", odd, plate1_});
  refused("this is a study itself");
  Bytes bytes = ReadBytes(plate2_);
  bytes.pop_back();
  WriteBytes(odd, bytes);
  refused("cannot be read whole");
  expectStudyRefuses({"study", "new", study_, folder_ / "none.vex"}, folder_ / "none.vex", 2,
                     "No such file");
}

TEST_F(Study, APlateNeedsAFileNameThatNamesIt) {
  const std::string bare = folder_ / "plate";
  std::filesystem::copy_file(plate1_, bare);
  expectStudyRefuses(
      {"study", "new", study_, bare}, bare, 1,
      "a plate is named after its file, whose name needs an extension, as in plate1.vex");
}

TEST_F(Study, RelativePathsNamePlates) {
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(std::filesystem::path(plate1_).parent_path());
  const CommandResult result = RunVex({"study", "new", study_, "plate1.vex", "./plate2.vex"});
  std::filesystem::current_path(before);
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(plates()[0]["name"], "plate1");
  EXPECT_EQ(plates()[1]["name"], "plate2");
}

TEST_F(Study, ExistingFilesAreReplacedOnlyWithForce) {
  makeStudy();
  expectStudyRefuses({"study", "new", study_, plate1_}, study_, 2, "already exists");
  EXPECT_EQ(RunVex({"study", "new", "--force", study_, plate1_}).errors,
            "vex: " + study_ + ": replaces a study of 2 plates\n");
  EXPECT_EQ(plates().size(), 1U);
}

TEST_F(Study, DryRunsChangeNothing) {
  Output({"study", "new", "--dry-run", study_, plate1_});
  EXPECT_FALSE(std::filesystem::exists(study_));
  Output({"study", "new", study_, plate1_});
  const Bytes before = ReadBytes(study_);
  EXPECT_EQ(Output({"study", "add", "--dry-run", study_, plate2_}),
            "+ plate2: 96 wells, 1 frame\n(dry run: nothing was changed)\n");
  EXPECT_EQ(Output({"study", "remove", "--dry-run", study_, "plate1"}),
            "- plate1\n(dry run: nothing was changed)\n");
  EXPECT_EQ(FirstDifference(ReadBytes(study_), before), "");
}

TEST_F(Study, PlatesAreRemovedByName) {
  makeStudy();
  expectStudyRefuses({"study", "remove", study_, "plate1", "plate9"}, study_, 2,
                     "no plate 'plate9'; its plates are 'plate1', 'plate2'");
  EXPECT_EQ(Output({"study", "remove", study_, "plate1"}), "- plate1\n");
  ASSERT_EQ(plates().size(), 1U);
  EXPECT_EQ(plates()[0]["name"], "plate2");
}

TEST_F(Study, AnExtractedPlateIsADocumentWithItsRawDataLast) {
  makeStudy();
  const std::string out = folder_ / "out.vex";
  Output({"study", "extract", study_, "plate2", out});
  const json before = TreeOutput({plate2_});
  const json after = TreeOutput({out});
  EXPECT_EQ(content(after), content(before));
  EXPECT_EQ(after.back()["tag"], "RAWa");
  EXPECT_EQ(Output({"export", out, "--raw"}), Output({"export", plate2_, "--raw"}));
  expectStudyRefuses({"study", "extract", study_, "plate1", study_}, study_, 2, "is also an input");
}

TEST_F(Study, RebuiltFromWhatWasExtractedItsPlatesAreTheSame) {
  makeStudy();
  std::filesystem::remove(plate1_);
  std::filesystem::remove(plate2_);
  Output({"study", "extract", study_, "plate1", plate1_});
  Output({"study", "extract", study_, "plate2", plate2_});
  const std::string again = folder_ / "again.vex";
  Output({"study", "new", again, plate1_, plate2_});
  const json before = TreeOutput({study_});
  const json after = TreeOutput({again});
  ASSERT_EQ(before[0]["children"].size(), 2U);
  EXPECT_EQ(content(after), content(before));
}

TEST_F(Study, SettingsThatAreNoStudysAreRefused) {
  makeStudy();
  EXPECT_EQ(Output({"study", "set", study_, "calibrator=liver", "endogenous-control=18S",
                    "confidence=95", "analysis-type=2"}),
            "calibrator: none -> liver\nendogenous-control: none -> 18S\nconfidence: none -> 95\n"
            "analysis-type: none -> 2\n");
  expectStudyRefuses({"study", "set", study_, "comment=x"}, study_, 2,
                     "unknown setting 'comment'; see 'vex study set --help'");
  const json settings = JsonOutput({"info", "--json", study_})["settings"];
  EXPECT_EQ(settings["calibrator"], "liver");
  EXPECT_EQ(plates().size(), 2U);
}

TEST_F(Study, ADocumentOfOnePlateIsNone) {
  for (const VexProcess::Arguments& arguments :
       {VexProcess::Arguments{"study", "add", plate1_, plate2_},
        VexProcess::Arguments{"study", "list", plate1_},
        VexProcess::Arguments{"study", "set", plate1_, "confidence=95"}}) {
    expectStudyRefuses(arguments, plate1_, 1, "this is not a study");
  }
  expectStudyRefuses({"study", "extract", plate1_, "x", study_}, plate1_, 2,
                     "has no plate 'x': it is not a study");
}

TEST_F(Study, ItsEndRecordIsNoFault) {
  makeStudy();
  const json info = JsonOutput({"info", "--json", study_});
  EXPECT_EQ(info["whole"], true);
  EXPECT_EQ(info["faults"], json::array());
  EXPECT_EQ(info["records"].back()["tag"], "EOF ");
}

TEST_F(Study, BytesInAPlateThatAreNoRecordAreNotLostInSilence) {
  makeStudy();
  Bytes bytes = ReadBytes(study_);
  const auto end = static_cast<std::ptrdiff_t>(bytes.size() - 24);  // the end of the last plate
  const Bytes odd = ToBytes("odd!more");
  bytes.insert(bytes.begin() + end, odd.begin(), odd.end());
  WriteBytes(study_, bytes);
  expectStudyRefuses({"study", "remove", study_, "plate1"}, study_, 1,
                     "saving would lose bytes in a plate that are no record");
  Output({"study", "list", study_});
}

TEST_F(Study, OldDataBlocksInPlatesAreUpgradedOnRequestOnly) {
  Bytes bytes = ReadBytes(plate2_);
  const Bytes tag = ToBytes("RAWa");
  const auto block = std::search(bytes.begin(), bytes.end(), tag.begin(), tag.end());
  ASSERT_NE(block, bytes.end());
  block[9] = 1;  // version 1, which has no times
  bytes.erase(block + 10, block + 10 + 14);
  WriteBytes(plate2_, bytes);
  expectStudyRefuses({"study", "new", study_, plate2_}, plate2_, 1, "of version 1");
  Output({"study", "new", "--upgrade", study_, plate2_});
  EXPECT_EQ(plates()[0]["frames"], 1);
}

class StudyOfSamples : public SampleDataTest {};

TEST_F(StudyOfSamples, IsListedWithItsPlates) {
  const CommandResult result =
      RunVex({"study", "list", "--json", Sample("golden/12-study.vex").string()});
  EXPECT_EQ(result.errors, "");
  const json plates = json::parse(result.output)["plates"];
  const json golden = json::parse(std::ifstream(Sample("golden/12-study.json")));
  for (const json& component : golden["components"]) {
    if (component["tag"] != "MPLC") continue;
    ASSERT_EQ(plates.size(), component["children"].size());
    for (std::size_t i = 0; i < plates.size(); ++i) {
      EXPECT_EQ(plates[i]["name"], component["children"][i]["name"]);
      EXPECT_EQ(plates[i]["modified"], lab::PlateDateText(component["children"][i]["date"]));
      EXPECT_EQ(plates[i]["offset"], component["children"][i]["offset"]);
    }
  }
}

}  // namespace vex2::test
