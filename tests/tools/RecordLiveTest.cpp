// Tests recording from a pipe: each frame is on the disk as soon as its last reading has arrived.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <memory>

#include "tests/tools/RecordFixture.h"

namespace vex2::test {
namespace {

using testing::HasSubstr;

constexpr const char* kColumns = "well,stage,cycle,time_s,temperature_c,fluorescence\n";

class RecordLiveTest : public RecordTest {
 protected:
  ~RecordLiveTest() override { End(); }

  VexProcess::Arguments Live(const VexProcess::Arguments& more = {}) const {
    VexProcess::Arguments arguments = {
        "record",
        Run(),
        "--readings",
        "-",
        "--wells",
        File("two.csv",
             "well,sample,target,task,quantity,reporter\nA1,a,t,UNKN,,green\n"
             "A2,b,t,UNKN,,green\n")};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }

  /// Starts a recorder that reads from a pipe.
  void Start(const VexProcess::Arguments& more = {}) {
    const std::string pipe = folder_ / "pipe";
    ::unlink(pipe.c_str());
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    recorder_ = std::make_unique<VexProcess>(
        Live(more), VexProcess::Surroundings{.input = {}, .inputPath = pipe});
    pipe_ = ::open(pipe.c_str(), O_WRONLY);
    ASSERT_GE(pipe_, 0);
  }
  void Send(const std::string& text) const {
    ASSERT_EQ(::write(pipe_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }
  void End() {
    if (pipe_ >= 0) ::close(pipe_);
    pipe_ = -1;
  }

  /// Starts a recorder, sends it three frames, and kills it after at least two of them.
  void StartAndKill() {
    Start();
    Send(kColumns + Frames(1, 3));
    ASSERT_TRUE(WaitForFrames(2));
    recorder_->Signal(SIGKILL);
    recorder_->Wait();
    End();
  }

  static std::string Row(const std::string& well, int cycle, const std::string& reading) {
    return well + ",amplification," + std::to_string(cycle) + "," + std::to_string(cycle * 40) +
           ",60," + reading + "\n";
  }
  static std::string Frame(int cycle) { return Row("A1", cycle, "0.5") + Row("A2", cycle, "0.25"); }
  static std::string Frames(int first, int last) {
    std::string rows;
    for (int cycle = first; cycle <= last; ++cycle) rows += Frame(cycle);
    return rows;
  }

  /// Runs `vex record` with these rows as standard input.
  CommandResult RecordLive(const std::string& rows, const VexProcess::Arguments& more = {}) const {
    return RunVex(Live(more), {.input = kColumns + rows});
  }

  std::unique_ptr<VexProcess> recorder_;
  int pipe_ = -1;
};

TEST_F(RecordLiveTest, FrameIsOnTheDiskBeforeTheNextOneIsSent) {
  Start();
  Send(kColumns);
  for (int cycle = 1; cycle <= 4; ++cycle) {
    Send(Row("A2", cycle, "0.25"));
    ::usleep(50'000);
    if (cycle > 1) {
      EXPECT_EQ(RecordedFrames(Run()), cycle - 1);
    }
    Send(Row("A1", cycle, "0.5"));
    ASSERT_TRUE(WaitForFrames(cycle - 1)) << cycle;
    EXPECT_EQ(RecordedFrames(Run()), cycle);
    EXPECT_EQ(RecordedStatus(Run()), "PROG");
    EXPECT_TRUE(recorder_->IsRunning());
  }
  End();
  const CommandResult result = recorder_->Wait();
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(RecordedStatus(Run()), "DONE");
  EXPECT_THAT(RunVex({"export", Run()}).output,
              HasSubstr("A1,amplification,4,160,60,0.5\nA2,amplification,1,40,60,0.25\n"));
}

TEST_F(RecordLiveTest, FinishedDocumentIsThatOfAPlayback) {
  ASSERT_EQ(RecordLive(Frames(1, 3)).exitCode, 0);
  EXPECT_THAT(TextOf(Run()), HasSubstr("source=readings\nframes=3\nscale=1000\n"));
  EXPECT_THAT(TextOf(Run()), HasSubstr("amplification: 3 cycles, read at 60 C\n"));
  EXPECT_EQ(RunVex({"check", Run()}).exitCode, 0);
}

TEST_F(RecordLiveTest, IncompleteLastFrameIsReportedAndNotRecorded) {
  const CommandResult result = RecordLive(Frames(1, 2) + Row("A1", 3, "1"));
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.errors,
            "vex: standard input: ended after 2 frames and a part of another, which is not "
            "recorded: well A2 has no reading in amplification cycle 3; use the same command "
            "with --resume to continue\n");
  EXPECT_EQ(RecordedFrames(Run()), 2);
  EXPECT_EQ(RecordedStatus(Run()), "PROG");
}

TEST_F(RecordLiveTest, KilledRunContinuesWithFramesSentAgain) {
  ASSERT_NO_FATAL_FAILURE(StartAndKill());
  const CommandResult result = RecordLive(Frames(1, 5), {"--resume"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(RecordedFrames(Run()), 5);
  EXPECT_EQ(RecordedStatus(Run()), "DONE");
}

TEST_F(RecordLiveTest, KilledRunContinuesWithTheNextFrame) {
  ASSERT_NO_FATAL_FAILURE(StartAndKill());
  const CommandResult result = RecordLive(Frames(4, 5), {"--resume"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(RecordedFrames(Run()), 5);
  EXPECT_THAT(TextOf(Run()), HasSubstr("frames=5\n"));
}

TEST_F(RecordLiveTest, FrameSentAgainWithAnotherReadingIsRefused) {
  ASSERT_EQ(RecordLive(Frames(1, 3), {"--frames", "5"}).exitCode, 1);
  const Bytes before = ReadBytes(Run());
  const CommandResult result =
      RecordLive(Frame(1) + Row("A1", 2, "0.5") + Row("A2", 2, "0.26"), {"--resume"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("run.vex: frame 1 holds another reading of well A2\n"));
  EXPECT_EQ(FirstDifference(ReadBytes(Run()), before), "");
}

TEST_F(RecordLiveTest, RunOfAGivenLengthEndsWithItsLastFrame) {
  Start({"--frames", "2"});
  Send(kColumns + Frames(1, 2));
  const CommandResult result = recorder_->Wait();  // the pipe is still open
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(RecordedStatus(Run()), "DONE");
}

TEST_F(RecordLiveTest, RunOfAGivenLengthDoesNotEndBefore) {
  CommandResult result = RecordLive(Frames(1, 2), {"--frames", "4"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.errors,
            "vex: standard input: ended after 2 of 4 frames; use the same command with --resume to "
            "continue\n");
  EXPECT_EQ(RecordedStatus(Run()), "PROG");
  result = RecordLive(Frames(3, 4), {"--resume"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(RecordedFrames(Run()), 4);
}

TEST_F(RecordLiveTest, FrameAfterTheLastOneIsRefused) {
  const CommandResult result = RecordLive(Frames(1, 3), {"--frames", "2"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors,
              HasSubstr("row 6: amplification cycle 3 follows the last of 2 frames"));
  EXPECT_EQ(RecordedFrames(Run()), 2);
}

TEST_F(RecordLiveTest, FrameThatIsOvertakenIsRefused) {
  const CommandResult result = RecordLive(Frame(1) + Row("A1", 2, "1") + Frame(3));
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("amplification cycle 3 is complete before amplification "
                                       "cycle 2, of which well A2 has no reading"));
  EXPECT_EQ(RecordedFrames(Run()), 1);
}

TEST_F(RecordLiveTest, SecondReadingOfARecordedFrameIsRefused) {
  const CommandResult result = RecordLive(Frames(1, 2) + Row("A1", 1, "1"));
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("row 6: amplification cycle 1 is complete already"));
}

TEST_F(RecordLiveTest, RoundingIsReportedAtOnceAndInTotal) {
  const CommandResult result =
      RecordLive(Frame(1) + Row("A1", 2, "0.5004") + Row("A2", 2, "0.1234"));
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.errors,
            "vex: standard input: readings, times or temperatures are rounded; the scale of "
            "readings is 1000\n"
            "vex: standard input: 2 readings rounded to 0.001, largest change 0.0004\n");
}

TEST_F(RecordLiveTest, ExactRunStopsBeforeItRounds) {
  const CommandResult result =
      RecordLive(Frame(1) + Row("A1", 2, "0.5004") + Row("A2", 2, "0.1234"), {"--exact"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("row 4: the reading 0.5004 would be rounded to 0.5"));
  EXPECT_EQ(RecordedFrames(Run()), 1);
}

TEST_F(RecordLiveTest, FirstFrameThatWouldBeRoundedLeavesNoDocument) {
  const CommandResult result =
      RecordLive(Row("A1", 1, "0.5004") + Row("A2", 1, "0.1234"), {"--exact"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_FALSE(std::filesystem::exists(Run()));
}

TEST_F(RecordLiveTest, ReadingThatOutgrowsTheScaleIsRefusedNotCut) {
  const CommandResult result = RecordLive(Frame(1) + Row("A1", 2, "70") + Row("A2", 2, "1"));
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors,
              HasSubstr("row 4: the reading 70 does not fit in 16 bits with the scale 1000"));
  EXPECT_EQ(RecordedFrames(Run()), 1);
}

TEST_F(RecordLiveTest, ExistingDocumentIsRefusedBeforeAnythingIsRead) {
  WriteBytes(Run(), ToBytes("somebody's"));
  Start();
  EXPECT_EQ(recorder_->Wait().exitCode, 2);  // nothing was sent
  EXPECT_EQ(TextOf(Run()), "somebody's");
}

TEST_F(RecordLiveTest, AskedToEndItDoesNotWaitForReadings) {
  Start();
  Send(kColumns + Frames(1, 2));
  ASSERT_TRUE(WaitForFrames(1));
  recorder_->Signal(SIGINT);
  const CommandResult result = recorder_->Wait();
  EXPECT_EQ(result.exitCode, 130);
  EXPECT_THAT(
      result.errors,
      HasSubstr("interrupted after 2 frames; use the same command with --resume to continue\n"));
}

TEST_F(RecordLiveTest, ChannelsMustBeNamed) {
  const std::string columns = "well,channel,stage,cycle,time_s,temperature_c,fluorescence\n";
  const std::string rows =
      "A1,FAM,amplification,1,20,60,0.5\nA2,FAM,amplification,1,20,60,0.5\n"
      "A1,VIC,amplification,1,20,60,NA\nA2,VIC,amplification,1,20,60,0.25\n";
  CommandResult result = RunVex(Live(), {.input = columns + rows});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("--channels"));
  result = RunVex(Live({"--channels", "FAM,VIC"}), {.input = columns + rows});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(RunVex({"export", Run()}).output, HasSubstr("A1,VIC,amplification,1,20,60,NA\n"));
}

TEST_F(RecordLiveTest, StartIsTheClocksOnlyWhenAskedFor) {
  ASSERT_EQ(RecordLive(Frames(1, 2)).exitCode, 0);
  EXPECT_THAT(RunVex({"info", "--json", Run()}).output, HasSubstr("\"start\":null"));
  ASSERT_EQ(RecordLive(Frames(1, 2), {"--force", "--started", "now"}).exitCode, 0);
  const std::time_t now = std::time(nullptr);
  const std::string year = std::to_string(std::gmtime(&now)->tm_year + 1900);
  EXPECT_THAT(RunVex({"info", "--json", Run()}).output, HasSubstr("\"start\":\"" + year + "-"));
  const CommandResult playback = RunVex(Record({"--force", "--started", "now"}));
  EXPECT_EQ(playback.exitCode, 2);
  EXPECT_THAT(playback.errors, HasSubstr("--started now is for --readings - alone"));
}

TEST_F(RecordLiveTest, WithoutReadingsNoDocumentIsMade) {
  const CommandResult result = RecordLive("");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("standard input: holds no readings"));
  EXPECT_FALSE(std::filesystem::exists(Run()));
}

}  // namespace
}  // namespace vex2::test
