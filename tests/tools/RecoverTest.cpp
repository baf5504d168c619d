// Tests the report of `vex recover`, and that it never destroys its input or an existing file at
// the output path.

#include <algorithm>
#include <filesystem>
#include <map>

#include "tests/tools/CheckFixture.h"

namespace vex2::test {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;

class Recover : public DamageTest {
 protected:
  CommandResult RecoverIt(const VexProcess::Arguments& more = {},
                          const VexProcess::Surroundings& surroundings = {}) const {
    VexProcess::Arguments arguments = {"recover", path_, "-o", recovered_};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunVex(arguments, surroundings);
  }
  /// Expects that the command refuses and that the files in the folder are unchanged.
  void ExpectNothingDone(const VexProcess::Arguments& arguments, int exitCode,
                         const std::string& text,
                         const VexProcess::Surroundings& surroundings = {}) const {
    const auto before = Folder();
    const CommandResult result = RunVex(arguments, surroundings);
    EXPECT_EQ(result.exitCode, exitCode);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, HasSubstr(text));
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
    EXPECT_EQ(Folder(), before);
  }
  std::map<std::string, Bytes> Folder() const {
    std::map<std::string, Bytes> content;
    for (const auto& entry : fs::directory_iterator(std::string(folder_ / "."))) {
      if (entry.is_regular_file()) content[entry.path().filename()] = ReadBytes(entry.path());
    }
    return content;
  }

  const std::string recovered_ = folder_ / "recovered.vex";
};

TEST_F(Recover, AWholeDocumentComesOutAsItWas) {
  MakeRun("PROG");
  const CommandResult result = RecoverIt();
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(result.output, "whole      10 records and 3 frames\nfrom       " + path_ +
                               ", 1872 bytes\nto         " + recovered_ + ", 1872 bytes\n");
  EXPECT_EQ(FirstDifference(ReadBytes(recovered_), ReadBytes(path_)), "");
}

TEST_F(Recover, FindsNothingInTextOrInOneByteRepeated) {
  for (const std::string& filler :
       {std::string(2000, 'x'), std::string(2000, '\x55'), "Vex2" + std::string(2000, 'x'),
        std::string(1024, '\0') + std::string(2000, '\x02')}) {
    WriteBytes(path_, ToBytes(filler));
    ExpectNothingDone({"recover", path_, "-o", recovered_}, 2, "nothing");
  }
}

TEST_F(Recover, CutOffRunKeepsAllWholeFramesAndReportsTheLoss) {
  MakeRun("DONE");
  Change([](Bytes& bytes) { bytes.resize(kEnd - 1); });
  const Bytes torn = ReadBytes(path_);
  const CommandResult result = RecoverIt();
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(result.output, HasSubstr("recovered  10 records and 2 frames\n"
                                       "lost       239 bytes in 1 place, 1 frame\n"));
  EXPECT_EQ(ReadBytes(path_), torn);
  EXPECT_THAT(Output({"check", "--strict", recovered_}), HasSubstr(": sound"));
}

TEST_F(Recover, ForProgramsTheReportIsAnObject) {
  MakeRun("DONE");
  Change([](Bytes& bytes) { bytes.resize(kEnd - 1); });
  const CommandResult result = RecoverIt({"--json"});
  EXPECT_EQ(result.exitCode, 1);
  const json report = json::parse(result.output);
  EXPECT_EQ(report["file"], path_);
  EXPECT_EQ(report["output"], recovered_);
  EXPECT_EQ(report["whole"], false);
  EXPECT_EQ(report["frames"], 2);
  EXPECT_EQ(report["lostFrames"], 1);
  EXPECT_EQ(report["lostBytes"], kFrame - 1);
  ASSERT_EQ(report["lost"].size(), 1U);
  EXPECT_EQ(report["lost"][0]["offset"], kEnd - kFrame);
}

TEST_F(Recover, ForProgramsPathsAreAsTheyAreAndAlwaysJson) {
  MakeRun("DONE");
  const std::string odd = folder_ / "a\tb.vex";
  const CommandResult result = RunVex({"recover", path_, "--json", "-o", odd});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(json::parse(result.output)["output"], odd);
  const std::string noText = folder_ / "\xFF.vex";
  const CommandResult other = RunVex({"recover", path_, "--json", "-o", noText});
  EXPECT_EQ(other.exitCode, 0);
  EXPECT_TRUE(json::accept(other.output)) << other.output;
}

TEST_F(Recover, NeverWritesToItsInputWhateverItIsCalled) {
  MakeRun("DONE");
  AppendFrameBytes(100);
  const std::string hardLink = folder_ / "hard.vex";
  const std::string softLink = folder_ / "soft.vex";
  fs::create_hard_link(path_, hardLink);
  fs::create_symlink("run.vex", softLink);
  for (const std::string& name : {path_, std::string(folder_ / "./run.vex"), hardLink, softLink}) {
    for (const char* force : {"--json", "--force"}) {
      ExpectNothingDone({"recover", path_, force, "-o", name}, 2, "never written to");
    }
  }
}

TEST_F(Recover, ExistingOutputIsKeptUnlessForced) {
  MakeRun("DONE");
  WriteBytes(recovered_, ToBytes("kept"));
  ExpectNothingDone({"recover", path_, "-o", recovered_}, 2,
                    "already exists; use --force to overwrite it");
  EXPECT_EQ(RecoverIt({"--force"}).exitCode, 0);
  EXPECT_EQ(ReadBytes(recovered_), ReadBytes(path_));
}

TEST_F(Recover, ARunThatIsGoingOnIsNotReplaced) {
  MakeRun("PROG");
  fs::rename(path_, recovered_);
  MakeRun("DONE");
  ExpectNothingDone({"recover", path_, "--force", "-o", recovered_}, 1, recovered_);
}

TEST_F(Recover, WithoutContentNoDocumentIsMade) {
  WriteBytes(recovered_, ToBytes("kept"));
  for (const Bytes& bytes :
       {Bytes(), ToBytes("well,stage,cycle\nA1,amp,1\n"), Bytes(5000, 0), Bytes(5000, 0xFF)}) {
    WriteBytes(path_, bytes);
    ExpectNothingDone({"recover", path_, "--force", "-o", recovered_}, 2, "nothing to recover");
  }
}

TEST_F(Recover, MissingPathsAreNamed) {
  MakeRun("DONE");
  const std::string missing = folder_ / "missing.vex";
  ExpectNothingDone({"recover", missing, "-o", recovered_}, 2,
                    "vex: " + missing + ": No such file or directory");
  const std::string folder = folder_ / "folder";
  fs::create_directory(folder);
  ExpectNothingDone({"recover", folder, "-o", recovered_}, 2, folder + ": ");
  ExpectNothingDone({"recover", path_, "--force", "-o", folder}, 2, folder + ": ");
  ExpectNothingDone({"recover", path_, "-o", missing + "/out.vex"}, 2, missing + "/out.vex: ");
}

TEST_F(Recover, WithoutRoomTheOldOutputStays) {
  MakeRun("DONE");
  ExpectNothingDone({"recover", path_, "-o", recovered_}, 3, recovered_ + ": ",
                    {.input = "", .fileSize = 1000});
  WriteBytes(recovered_, ToBytes("kept"));
  ExpectNothingDone({"recover", path_, "--force", "-o", recovered_}, 3, recovered_ + ": ",
                    {.input = "", .fileSize = 1000});
}

/// Tests that damage documents of a few records in one place and compare every byte of the result.
class RecoverRecords : public Recover {
 protected:
  void ExpectRecovered(const Bytes& expected) const {
    EXPECT_EQ(RecoverIt({"--force"}).exitCode, 0);
    EXPECT_EQ(FirstDifference(ReadBytes(recovered_), expected), "");
  }
};

TEST_F(RecoverRecords, AListWhoseTagIsDamagedIsGivenItAgain) {
  const Bytes whole = ReadBytes(SourcePath("tests/data/setup.vex"));
  for (const std::size_t list : {1024U, 1034U, 1067U}) {
    for (std::size_t i = 0; i < 4; ++i) {
      WriteBytes(path_, whole);
      Change([=](Bytes& bytes) { bytes[list + i] ^= 1U; });
      ExpectRecovered(whole);
    }
  }
}

TEST_F(RecoverRecords, LengthThatIncludesOtherRecordsDoesNotLoseThem) {
  const Bytes settings = ByteString().Text("GLBL").Long(14).Short(1).Text("VERS").Long(4).Long(512);
  for (const char* tag : {"COMM", "Wxyz"}) {
    MakeDocument(settings);
    Append(ByteString().Text(tag).Long(5 + 24).Text("first"));
    Append(settings);
    Append(settings);
    RecoverIt({"--force"});
    const std::string tree = Output({"tree", recovered_});
    std::size_t lists = 0;
    for (auto at = tree.find("GLBL"); at != std::string::npos; at = tree.find("GLBL", at + 1)) {
      ++lists;
    }
    EXPECT_EQ(lists, 3U) << tree;
  }
}

TEST_F(RecoverRecords, AnEndOfAPlateWhoseTagIsDamagedIsGivenItAgain) {
  const Bytes whole = ReadBytes(SourcePath("tests/data/study.vex"));
  constexpr std::size_t kEndOfPlate = 2104;
  for (std::size_t i = 0; i < 4; ++i) {
    WriteBytes(path_, whole);
    Change([=](Bytes& bytes) { bytes[kEndOfPlate + i] ^= 0x20U; });
    RecoverIt({"--force"});
    EXPECT_EQ(FirstDifference(ReadBytes(recovered_), whole), "") << i;
  }
}

TEST_F(RecoverRecords, FramesWithoutTheirHeadAreFoundByTheirTimes) {
  const auto readings = SourcePath("tests/data/run-readings.csv");
  const auto wells = SourcePath("tests/data/run-wells.csv");
  ASSERT_EQ(RunVex({"record", path_, "--readings", readings, "--wells", wells}).exitCode, 0);
  const Bytes whole = ReadBytes(path_);
  const std::string_view tag = "RAWa";
  const auto block = std::search(whole.begin(), whole.end(), tag.begin(), tag.end());
  const auto head = block - whole.begin();
  constexpr std::ptrdiff_t kHead = 26 + 2 * 8;
  // Overwrites the head of the block and the record before it, which would show where the block
  // begins.
  Change([=](Bytes& bytes) {
    std::fill(bytes.begin() + head - 30, bytes.begin() + head + kHead, std::uint8_t{0});
  });
  EXPECT_EQ(RecoverIt().exitCode, 1);
  const Bytes recovered = ReadBytes(recovered_);
  const std::size_t frames = whole.size() - static_cast<std::size_t>(head + kHead);
  EXPECT_EQ(FirstDifference(Slice(recovered, recovered.size() - frames - kHead + 24, frames + 18),
                            Slice(whole, whole.size() - frames - kHead + 24, frames + 18)),
            "");
}

}  // namespace
}  // namespace vex2::test
