// Tests how `vex check` prints its findings.

#include "tests/support/DocumentBytes.h"
#include "tests/tools/CheckFixture.h"

namespace vex2::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

class CheckCommandLine : public DamageTest {};

TEST_F(CheckCommandLine, ASoundDocumentIsOneLineAndExitCode0) {
  MakeRun();
  EXPECT_EQ(Output({"check", path_}), path_ + ": sound\n");
}

TEST_F(CheckCommandLine, ErrorIsPrintedWithOffsetEffectAndFixAndExitCode1) {
  MakeRun("PROG");
  AppendFrameBytes(2 * kFrame);
  const CommandResult result = RunVex({"check", path_});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(result.output,
            path_ +
                ": 1 error\n"
                "  error  RAWa, byte 1872\n"
                "    2 whole frames follow the end that the block's length declares\n"
                "    effect: the block is read with 3 frames, and a save drops the "
                "others\n"
                "    fix: 'vex repair' counts those in which each well has a "
                "reading\n");
}

TEST_F(CheckCommandLine, WarningsAreFindingsOnlyWhenStrict) {
  MakeRun("PROG");
  AppendFrameBytes(10);
  EXPECT_THAT(Output({"check", path_}), testing::StartsWith(path_ + ": sound, with 1 warning\n"));
  EXPECT_EQ(RunVex({"check", "--strict", path_}).exitCode, 1);
}

TEST_F(CheckCommandLine, NotesAreShownWhenAskedForAndNeverFindings) {
  MakeRun();
  SetLong(kPositionAt, kEnd);
  EXPECT_EQ(Output({"check", "--strict", path_}), path_ + ": sound, with 1 note\n");
  EXPECT_THAT(Output({"check", "--notes", path_}), HasSubstr("\n  note  header, byte 68\n"));
}

TEST_F(CheckCommandLine, ForProgramsItIsAnObjectADocument) {
  MakeRun("PROG");
  AppendFrameBytes(10);
  const json object = JsonOutput({"check", "--json", path_});
  EXPECT_EQ(object["file"], path_);
  EXPECT_EQ(object["leftOut"], 0);
  ASSERT_EQ(object["findings"].size(), 1U);
  const json& finding = object["findings"][0];
  EXPECT_EQ(finding.size(), 6U);
  EXPECT_EQ(finding["severity"], "warning");
  EXPECT_EQ(finding["record"], "RAWa");
  EXPECT_EQ(finding["offset"], 1872);
  for (const char* key : {"problem", "consequence", "remedy"}) EXPECT_NE(finding[key], "") << key;
}

TEST_F(CheckCommandLine, UnreadableFileGivesExitCode2AndOthersAreChecked) {
  MakeRun();
  const std::string missing = folder_ / "missing.vex";
  const CommandResult result = RunVex({"check", missing, path_});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.errors, "vex: " + missing + ": No such file or directory\n");
  EXPECT_EQ(result.output, path_ + ": sound\n");
}

class CheckOfSamples : public SampleDataTest {};

TEST_F(CheckOfSamples, AllAreSoundButForTheBlockOfTheOldVersionThatWasSaved) {
  const auto files = SampleFiles("golden", ".vex");
  EXPECT_EQ(files.size(), 28U);
  for (const auto& path : files) {
    const lab::Findings findings = lab::Check(path);
    // A save gave the block of version 1 a time block but kept its length, so it cannot be read
    // back.
    const bool isSound = path.filename() != "05-reporting-blocks.roundtrip.vex";
    EXPECT_EQ(findings.Count(lab::Severity::kError), isSound ? 0U : 2U) << path;
  }
}

}  // namespace
}  // namespace vex2::test
