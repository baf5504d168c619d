// Tests recordings that end early, and how they are resumed.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <random>

#include "tests/tools/RecordFixture.h"

namespace vex2::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr std::size_t kPositionAt = 68;  // the header's offset of the data block

class RecordResumeTest : public RecordTest {
 protected:
  /// Records slowly and kills the recorder when the document has more than `frames` frames.
  void RecordAndKill(int frames = 10) {
    VexProcess recorder(Record({"--pace", "0.01"}));
    ASSERT_TRUE(WaitForFrames(frames));
    recorder.Signal(SIGKILL);
    ASSERT_EQ(recorder.Wait().endSignal, SIGKILL);
    ASSERT_EQ(RecordedStatus(Run()), "PROG");
    ASSERT_LT(RecordedFrames(Run()), kFrames);
    CutTornFrame();
  }

  /// Cuts off the uncommitted bytes that the kill may have left, so that tests know the end of the
  /// document.
  void CutTornFrame() const {
    const std::size_t block = BlockPosition();
    const std::size_t length = WordAt(block + 4);
    Change([=](Bytes& bytes) { bytes.resize(block + 8 + length); });
  }

  void ExpectResumedWhole(const VexProcess::Arguments& more = {}) {
    VexProcess::Arguments arguments = Record({"--resume"});
    arguments.insert(arguments.end(), more.begin(), more.end());
    const CommandResult result = RunVex(arguments);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    ExpectWhole();
  }

  /// Expects that the command refuses the document with this error and leaves it unchanged.
  void ExpectRefused(const VexProcess::Arguments& arguments, const std::string& error) {
    const Bytes before = ReadBytes(Run());
    const CommandResult result = RunVex(arguments);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, HasSubstr(Run() + ": "));
    EXPECT_THAT(result.errors, HasSubstr(error));
    EXPECT_EQ(FirstDifference(ReadBytes(Run()), before), "");
  }

  std::uint32_t WordAt(std::size_t place) const {
    const Bytes bytes = ReadBytes(Run());
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < 4; ++i) word = word << 8U | bytes.at(place + i);
    return word;
  }
  std::uint32_t BlockPosition() const { return WordAt(kPositionAt); }

  void Change(const std::function<void(Bytes&)>& change) const {
    Bytes bytes = ReadBytes(Run());
    change(bytes);
    WriteBytes(Run(), bytes);
  }

  /// Cuts the document to its state during the first commit, which has written `rest` bytes.
  void CutToFirstCommit(std::size_t rest) const {
    const std::uint32_t block = BlockPosition();
    Change([&](Bytes& bytes) {
      bytes.resize(block + rest);
      std::fill_n(bytes.begin() + kPositionAt, 4, std::uint8_t{0});
    });
  }
};

TEST_F(RecordResumeTest, KilledRecordingIsResumed) {
  RecordAndKill();
  ExpectResumedWhole();
}

TEST_F(RecordResumeTest, KilledAtAnyMomentItKeepsItsFramesAndIsWholeInTheEnd) {
  std::mt19937 random(20240611);
  for (int round = 0; round < 25; ++round) {
    SCOPED_TRACE(round);
    fs::remove(Run());
    VexProcess recorder(Record({"--pace", "0.002"}));
    ::usleep(static_cast<useconds_t>(std::uniform_int_distribution<int>(0, 200'000)(random)));
    const int frames = RecordedFrames(Run());
    recorder.Signal(SIGKILL);
    recorder.Wait();
    EXPECT_GE(RecordedFrames(Run()), frames);
    ExpectResumedWhole();
  }
}

TEST_F(RecordResumeTest, KilledAgainAndAgainItStillEnds) {
  for (const int frames : {3, 9, 20, 31}) {
    VexProcess recorder(Record({"--pace", "0.01", "--resume"}));
    ASSERT_TRUE(WaitForFrames(frames));
    recorder.Signal(SIGKILL);
    recorder.Wait();
  }
  ExpectResumedWhole();
}

TEST_F(RecordResumeTest, MissingDocumentIsCreated) {
  ExpectResumedWhole();
}

TEST_F(RecordResumeTest, ResumedAndUninterruptedRunsAreTheSameButForTheirTimes) {
  RecordAndKill();
  ExpectResumedWhole();
  Bytes resumed = ReadBytes(Run());
  ASSERT_EQ(RunVex(Record({"--force"})).exitCode, 0);
  Bytes whole = ReadBytes(Run());
  ASSERT_EQ(resumed.size(), whole.size());
  const std::size_t times = whole.size() - (8 + 18 + 2 * kWells + kFrames * kFrameBytes) + 12;
  std::fill_n(resumed.begin() + static_cast<std::ptrdiff_t>(times), 12, std::uint8_t{0});
  std::fill_n(whole.begin() + static_cast<std::ptrdiff_t>(times), 12, std::uint8_t{0});
  EXPECT_EQ(FirstDifference(resumed, whole), "");
}

TEST_F(RecordResumeTest, UncommittedFrameIsCutOff) {
  RecordAndKill();
  const Bytes whole = ReadBytes(Run());
  for (const std::size_t torn : {std::size_t{1}, std::size_t{79}, kFrameBytes - 1, kFrameBytes}) {
    SCOPED_TRACE(torn);
    WriteBytes(Run(), whole);
    Change([&](Bytes& bytes) {
      const auto last = static_cast<std::ptrdiff_t>(bytes.size() - kFrameBytes);
      const Bytes frame(bytes.begin() + last, bytes.end());
      bytes.insert(bytes.end(), frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(torn));
    });
    ExpectResumedWhole();
  }
}

TEST_F(RecordResumeTest, UncommittedFrameOfZerosIsCutOff) {
  RecordAndKill();
  Change([](Bytes& bytes) { bytes.resize(bytes.size() + 100); });
  ExpectResumedWhole();
}

TEST_F(RecordResumeTest, UncommittedFirstBlockIsCutOff) {
  RecordAndKill();
  const Bytes whole = ReadBytes(Run());
  const std::size_t head = 8 + 18 + 2 * kWells;
  for (const std::size_t rest :
       {std::size_t{0}, std::size_t{3}, std::size_t{6}, head, head + 100, head + kFrameBytes}) {
    SCOPED_TRACE(rest);
    WriteBytes(Run(), whole);
    CutToFirstCommit(rest);
    ExpectResumedWhole();
  }
}

TEST_F(RecordResumeTest, DocumentWithoutItsStatusIsResumed) {
  RecordAndKill();
  CutToFirstCommit(0);
  Change([](Bytes& bytes) { std::copy_n("ZERO", 4, bytes.begin() + 64); });
  ExpectResumedWhole();
}

TEST_F(RecordResumeTest, OffsetInTheHeaderIsCorrected) {
  RecordAndKill();
  Change([](Bytes& bytes) { bytes[kPositionAt + 3] ^= 1U; });
  ExpectResumedWhole();
}

TEST_F(RecordResumeTest, LengthThatCountsTooMuchIsCorrected) {
  RecordAndKill();
  Change([](Bytes& bytes) { bytes.resize(bytes.size() - 10); });
  ExpectResumedWhole();
}

TEST_F(RecordResumeTest, FinishedRunIsReported) {
  RunVex(Record());
  const Bytes before = ReadBytes(Run());
  const CommandResult result = RunVex(Record({"--resume"}));
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output, Run() + ": the run is complete, nothing is left to record\n");
  EXPECT_EQ(ReadBytes(Run()), before);
}

TEST_F(RecordResumeTest, OtherReadingsAreRefused) {
  RecordAndKill();
  const std::string other = File("other.csv", ReadingsWith("A1,amplification,2,59.5,60,0.317",
                                                           "A1,amplification,2,59.5,60,0.318"));
  ExpectRefused(RecordFrom(other, {"--resume"}), "frame 1 holds another reading of well A1");
}

TEST_F(RecordResumeTest, OtherScaleIsRefused) {
  RecordAndKill();
  ExpectRefused(Record({"--resume", "--scale", "100"}),
                "was recorded with 'scale=1000', not with 'scale=100'");
}

TEST_F(RecordResumeTest, OtherNumberOfFramesIsRefused) {
  RecordAndKill();
  std::istringstream lines(TextOf(Readings()));
  std::string fewer;
  for (std::string line; std::getline(lines, line);) {
    if (line.find(",melt,8,") == std::string::npos) fewer += line + "\n";
  }
  ExpectRefused(RecordFrom(File("fewer.csv", fewer), {"--resume"}),
                "was recorded with 'frames=48', not with 'frames=47'");
}

TEST_F(RecordResumeTest, OtherWellsAreRefused) {
  RecordAndKill();
  const auto moved = [](std::string text) {
    for (auto at = text.find("\nB4,"); at != std::string::npos; at = text.find("\nB4,", at)) {
      text.replace(at, 4, "\nC4,");
    }
    return text;
  };
  ExpectRefused({"record", Run(), "--readings", File("readings.csv", moved(TextOf(Readings()))),
                 "--wells", File("wells.csv", moved(TextOf(Wells()))), "--resume"},
                "other wells");
}

TEST_F(RecordResumeTest, OtherContentsOfWellsAreRefused) {
  RecordAndKill();
  const std::string wells = TextOf(Wells());
  const auto with = [&](const std::string& from, const std::string& to) {
    std::string text = wells;
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
      text.replace(at, from.size(), to);
    }
    return VexProcess::Arguments{
        "record", Run(), "--readings", Readings(), "--wells", File("wells.csv", text), "--resume"};
  };
  const std::string cannot = "cannot resume: the ";
  ExpectRefused(with("A1,dilution 1,", "A1,dilution 9,"),
                cannot +
                    "sample of well A1 is 'dilution 1' in the document, but 'dilution 9' in the "
                    "run to record");
  ExpectRefused(with("target A,STND,1000000,", "target A,UNKN,1000000,"),
                cannot + "task of well A1 is 'STND' in the document, but 'UNKN' in");
  ExpectRefused(with("STND,1000000,", "STND,1000001,"),
                cannot + "quantity of well A1 is '1000000' in the document, but '1000001' in");
  ExpectRefused(with(",green", ",red"),
                cannot + "reporter of well A1 is 'green' in the document, but 'red' in");
  ExpectRefused(with("A1,dilution 1,target A,", "A1,dilution 1,target B,"),
                cannot + "target of well A1 is 'target A' in the document, but 'target B' in");
}

TEST_F(RecordResumeTest, OtherSettingsAreRefused) {
  RecordAndKill();
  ExpectRefused(Record({"--resume", "--assay", "AllD"}),
                "cannot resume: the assay is 'AbsQ' in the document, but 'AllD' in");
  ExpectRefused(Record({"--resume", "--started", "2026-11-22T08:00:00Z"}),
                "was recorded without 'started=2026-11-22T08:00:00Z'");
  // Overwrites bytes of the document, as another program could.
  const auto edit = [&](const std::string& from, const std::string& to) {
    Change([&](Bytes& bytes) {
      const auto found = std::search(bytes.begin(), bytes.end(), from.begin(), from.end());
      ASSERT_NE(found, bytes.end()) << from;
      std::copy(to.begin(), to.end(), found);
    });
  };
  const Bytes before = ReadBytes(Run());
  edit("Played back", "Copied from");
  ExpectRefused(Record({"--resume"}), "cannot resume: the comment is 'Copied from from measured");
  WriteBytes(Run(), before);
  edit(std::string("DASB\0\0\0\2\0\6", 10), std::string("DASB\0\0\0\2\0\7", 10));
  ExpectRefused(Record({"--resume"}),
                "cannot resume: the baseline-start of detector target A is '7' in the document, "
                "but '6' in the run to record");
  WriteBytes(Run(), before);
  edit("amplification: 40", "amplification: 41");
  ExpectRefused(Record({"--resume"}), "cannot resume: the program is 'amplification: 41 cycles");
}

TEST_F(RecordResumeTest, ValuesThatAreNotGivenAgainAreTheDocuments) {
  const VexProcess::Arguments values = {"--scale", "2000", "--started", "2026-11-22T08:00:00Z",
                                        "--assay", "RelQ"};
  VexProcess::Arguments first = Record(values);
  first.insert(first.end(), {"--pace", "0.01"});
  VexProcess recorder(first);
  ASSERT_TRUE(WaitForFrames(5));
  recorder.Signal(SIGKILL);
  recorder.Wait();
  ExpectResumedWhole();
  EXPECT_THAT(TextOf(Run()), HasSubstr("scale=2000\n"));
  EXPECT_THAT(TextOf(Run()).substr(8, 4), "RelQ");
}

TEST_F(RecordResumeTest, WhatIsNoDocumentIsRefused) {
  WriteBytes(Run(), ToBytes("no document"));
  ExpectRefused(Record({"--resume"}), "is not a plate document");
}

TEST_F(RecordResumeTest, StatusOfNoRunInProgressIsRefused) {
  RecordAndKill();
  Change([](Bytes& bytes) { std::copy_n("prog", 4, bytes.begin() + 64); });
  ExpectRefused(Record({"--resume"}), "has the status 'prog', so its run is not in progress");
}

TEST_F(RecordResumeTest, RecordAfterTheDataBlockIsNotCutOff) {
  RecordAndKill();
  Change([](Bytes& bytes) {
    const Bytes record = {'C', 'A', 'L', 'R', 0, 0, 0, 2, 'a', 0};
    bytes.insert(bytes.end(), record.begin(), record.end());
  });
  ExpectRefused(Record({"--resume"}), "more bytes follow than an interrupted commit leaves behind");
}

// An interrupted first commit begins with its tag or with zeros. Other bytes that are cut off may
// be a record.
TEST_F(RecordResumeTest, IncompleteLastRecordIsNotCutOff) {
  RecordAndKill();
  CutToFirstCommit(0);
  Change([](Bytes& bytes) {
    const Bytes record = {'C', 'A', 'L', 'R', 0, 0, 0, 9, 'a'};
    bytes.insert(bytes.end(), record.begin(), record.end());
  });
  ExpectRefused(Record({"--resume"}), "more bytes follow than an interrupted commit leaves behind");
}

TEST_F(RecordResumeTest, SecondRecorderIsRefusedWhileTheFirstLives) {
  VexProcess first(Record({"--pace", "600"}));
  ASSERT_TRUE(WaitForFrames(0));
  fs::create_symlink("run.vex", folder_ / "link.vex");
  fs::create_directory(folder_ / "sub");
  for (const char* name : {"run.vex", "link.vex", "sub/../run.vex", "./run.vex"}) {
    for (const char* way : {"--resume", "--force"}) {
      VexProcess::Arguments arguments = Record({way});
      arguments[1] = folder_ / name;
      const CommandResult second = RunVex(arguments);
      EXPECT_EQ(second.exitCode, 3) << name << way;
      EXPECT_THAT(second.errors, HasSubstr("is being recorded already")) << name << way;
    }
  }
  fs::create_hard_link(Run(), folder_ / "hard.vex");
  VexProcess::Arguments arguments = Record({"--resume"});
  arguments[1] = folder_ / "hard.vex";
  EXPECT_THAT(RunVex(arguments).errors, HasSubstr("has other names as well"));
  fs::remove(folder_ / "hard.vex");
  first.Signal(SIGKILL);
  EXPECT_EQ(first.Wait().endSignal, SIGKILL);
  EXPECT_EQ(RunVex(Record({"--resume"})).exitCode, 0);
  ExpectWhole();
}

TEST_F(RecordResumeTest, OfManyRecordersThatStartAtOnceOneRecords) {
  std::vector<std::unique_ptr<VexProcess>> recorders;
  for (int i = 0; i < 6; ++i) {
    recorders.push_back(std::make_unique<VexProcess>(Record({"--pace", "0.02"})));
  }
  int done = 0;
  for (const auto& recorder : recorders) {
    const CommandResult result = recorder->Wait();
    EXPECT_THAT(result.exitCode, testing::AnyOf(0, 2, 3)) << result.errors;
    if (result.exitCode == 0) ++done;
  }
  EXPECT_EQ(done, 1);
  ExpectWhole();
}

TEST_F(RecordResumeTest, LockOfAKilledRecorderDoesNotBlock) {
  RecordAndKill();
  EXPECT_TRUE(fs::exists(folder_ / ".run.vex.recording"));
  ExpectResumedWhole();
  EXPECT_FALSE(fs::exists(folder_ / ".run.vex.recording"));
}

TEST_F(RecordResumeTest, DanglingLinkIsFollowedToTheNewDocument) {
  fs::create_directory(folder_ / "sub");
  fs::create_symlink("sub/real.vex", Run());
  EXPECT_EQ(RunVex(Record()).exitCode, 0);
  ExpectWhole();
  EXPECT_TRUE(fs::is_symlink(Run()));
  EXPECT_TRUE(fs::is_regular_file(folder_ / "sub/real.vex"));
}

TEST_F(RecordResumeTest, InterruptFinishesTheFrameAndNamesResume) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    SCOPED_TRACE(signal);
    fs::remove(Run());
    VexProcess recorder(Record({"--pace", "0.02"}));
    ASSERT_TRUE(WaitForFrames(2));
    recorder.Signal(signal);
    recorder.Signal(signal);
    const CommandResult result = recorder.Wait();
    EXPECT_EQ(result.exitCode, 130);
    const int frames = RecordedFrames(Run());
    EXPECT_THAT(result.errors,
                HasSubstr("interrupted after " + std::to_string(frames) +
                          " of 48 frames; use the same command with --resume to continue"));
    EXPECT_FALSE(fs::exists(folder_ / ".run.vex.recording"));
    ExpectResumedWhole();
  }
}

TEST_F(RecordResumeTest, LongPaceIsCutShort) {
  VexProcess recorder(Record({"--pace", "3600"}));
  ASSERT_TRUE(WaitForFrames(0));
  recorder.Signal(SIGINT);
  EXPECT_EQ(recorder.Wait().exitCode, 130);
  EXPECT_EQ(RecordedFrames(Run()), 1);
}

TEST_F(RecordResumeTest, FileThatCannotGrowIsASystemErrorAndCanBeResumed) {
  for (const unsigned long size : {700UL, 1100UL, 1500UL, 5000UL, 20'000UL, 30'000UL}) {
    SCOPED_TRACE(size);
    fs::remove(Run());
    const CommandResult result = RunVex(Record(), {.input = {}, .fileSize = size});
    EXPECT_EQ(result.exitCode, 3);
    const int frames = size < 1100 ? 0 : RecordedFrames(Run());
    EXPECT_EQ(result.errors, "vex: " + Run() + ": File too large" +
                                 (frames == 0 ? "\n"
                                              : "; " + std::to_string(frames) +
                                                    " of 48 frames are safe; use the same command "
                                                    "with --resume to continue\n"));
    ExpectResumedWhole();
  }
}

using RecordSampleTest = RecordResumeTest;

TEST_F(RecordSampleTest, MeasuredPlateOf384WellsKilledHalfWayIsWholeInTheEnd) {
  if (SampleFolder().empty()) GTEST_SKIP() << "no sample data";
  const std::string readings = SampleFolder() / "real/calibration-384-readings.csv";
  const std::string wells = SampleFolder() / "real/calibration-384-wells.csv";
  const VexProcess::Arguments arguments = {"record", Run(),     "--readings",
                                           readings, "--wells", wells};
  VexProcess::Arguments slowly = arguments;
  slowly.insert(slowly.end(), {"--pace", "0.01"});
  VexProcess recorder(slowly);
  ASSERT_TRUE(WaitForFrames(107));
  recorder.Signal(SIGKILL);
  ASSERT_EQ(recorder.Wait().endSignal, SIGKILL);
  ASSERT_LT(RecordedFrames(Run()), 216);
  // Leaves part of a frame, as if the recorder had been killed during a write.
  CutTornFrame();
  Change([](Bytes& bytes) {
    const Bytes torn(bytes.end() - 384 * 80, bytes.end() - 1000);
    bytes.insert(bytes.end(), torn.begin(), torn.end());
  });
  VexProcess::Arguments resume = arguments;
  resume.emplace_back("--resume");
  const CommandResult result = RunVex(resume);
  ASSERT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(RecordedStatus(Run()), "DONE");
  EXPECT_EQ(RecordedFrames(Run()), 216);
  const auto expected = ReadReadingsFile(readings);
  EXPECT_EQ(expected.size(), 82944U);
  EXPECT_EQ(RecordedReadings(Run()), expected);
  const CommandResult exported = RunVex({"export", Run(), "--format", "csv"});
  ASSERT_EQ(exported.exitCode, 0) << exported.errors;
  std::istringstream rows(exported.output);
  EXPECT_EQ(ReadReadings(rows), expected);
}

TEST_F(RecordSampleTest, MeasuredPlateOf96WellsIsRecordedWhole) {
  if (SampleFolder().empty()) GTEST_SKIP() << "no sample data";
  const std::string readings = SampleFolder() / "real/calibration-96-readings.csv";
  ASSERT_EQ(RunVex({"record", Run(), "--readings", readings, "--wells",
                    SampleFolder() / "real/calibration-96-wells.csv"})
                .exitCode,
            0);
  EXPECT_EQ(RecordedReadings(Run()), ReadReadingsFile(readings));
}

}  // namespace
}  // namespace vex2::test
