// Tests the promises of RunRecorder: a frame is on the disk when Append returns, and no use of
// RunRecorder damages a document.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <vector>

#include "lab/Error.h"
#include "lab/model/OutputFiles.h"
#include "lab/record/RunRecorder.h"
#include "tests/lab/ErrorOf.h"
#include "tests/reliability/ForkedProcess.h"
#include "tests/support/ByteString.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/Files.h"
#include "tests/support/SilentHost.h"
#include "tests/support/TempFolder.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::test {
namespace {

using lab::ErrorCode;
using lab::RecordingPlan;
using lab::RunRecorder;

constexpr std::size_t kFrames = 6;
constexpr std::uint16_t kSecondWell = 14;
constexpr std::size_t kRawDataOffsetAt = 68;  // in the header
constexpr std::size_t kBlockHead = 8 + 18;    // before the well numbers

RecordingPlan rawPlan() {
  RecordingPlan plan;
  plan.plate.wells = {
      {.number = 1, .name = {}, .sample = "A", .targets = {{"FAM-1", "UNKN", {}, "FAM"}}},
      {.number = kSecondWell, .name = {}, .sample = "B", .targets = {}}};
  plan.comment = "second series";
  plan.frameCount = kFrames;
  return plan;
}

RecordingPlan measuredPlan() {
  RecordingPlan plan = rawPlan();
  plan.scale = lab::ReadingScale(1000);
  plan.started = "2026-11-22T08:00:00Z";
  return plan;
}

std::vector<lab::RawRecord> rawFrame(std::size_t index) {
  std::vector<lab::RawRecord> frame(2);
  for (std::size_t i = 0; i < frame.size(); ++i) {
    frame[i].well = i == 0 ? 1 : kSecondWell;
    frame[i].leading = {1, static_cast<std::uint16_t>(index + 1), 6000, 0, 7};
    frame[i].readings[0] = static_cast<std::uint16_t>(100 * index + i + 1);
  }
  return frame;
}

lab::MeasuredFrame measuredFrame(std::size_t index) {
  const auto number = static_cast<double>(index);
  return {
      .stage = lab::Stage::kAmplification,
      .cycle = static_cast<std::uint16_t>(index + 1),
      .wells = {{.well = 1, .temperature = 60, .time = 30 * number, .values = {1.5 + number}},
                {.well = kSecondWell, .temperature = 60, .time = 30 * number, .values = {2.5}}}};
}

class RunRecorderTest : public TempFolderTest {
 protected:
  std::string path() const { return folder_ / "run.vex"; }

  RunRecorder recorder(lab::RecorderOptions options = {}) const {
    return RunRecorder(path(), rawPlan(), options);
  }

  void record(std::size_t frames) const {
    RunRecorder made = recorder();
    for (std::size_t i = 0; i < frames; ++i) made.Append(rawFrame(i));
  }

  // Checks that the document holds exactly frames 0 to `frames` - 1, with the given readings.
  void expectFrames(std::size_t frames) const {
    Vex2FileManager document;
    ASSERT_EQ(document.ReadFromFile(path().c_str()), kSuccess);
    ASSERT_EQ(document.GetDataFrameCount(DataRAWa), static_cast<int>(frames));
    for (std::size_t frame = 0; frame < frames; ++frame) {
      for (const lab::RawRecord& given : rawFrame(frame)) {
        Vex2WellRecord record;
        ASSERT_TRUE(
            document.GetAcqDataWellRecord(&record, static_cast<int>(frame), given.well, DataRAWa));
        EXPECT_TRUE(std::equal(given.leading.begin(), given.leading.end(), record.leading));
        EXPECT_TRUE(std::equal(given.readings.begin(), given.readings.end(), record.data));
      }
    }
  }

  template <typename Work>
  static std::string messageOf(const Work& work) {
    return ErrorOf(work).what();
  }
};

TEST_F(RunRecorderTest, RecordsEachFrameAsGiven) {
  RunRecorder made = recorder();
  EXPECT_EQ(made.FrameCount(), 0U);
  EXPECT_EQ(std::vector<std::uint16_t>(made.Wells().begin(), made.Wells().end()),
            (std::vector<std::uint16_t>{1, kSecondWell}));
  for (std::size_t i = 0; i < kFrames; ++i) {
    made.Append(rawFrame(i));
    EXPECT_EQ(made.FrameCount(), i + 1);
    expectFrames(i + 1);  // while the run is being recorded
  }
  EXPECT_FALSE(made.IsFinished());
  made.Finish();
  EXPECT_TRUE(made.IsFinished());
  expectFrames(kFrames);
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path().c_str()), kSuccess);
  EXPECT_TRUE(document.IsAcquisitionDone());
}

TEST_F(RunRecorderTest, StoresReadingsInRealUnitsWithScale) {
  RunRecorder made(path(), measuredPlan());
  for (std::size_t i = 0; i < kFrames; ++i) made.Append(measuredFrame(i));
  made.Finish();
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path().c_str()), kSuccess);
  Vex2WellRecord record;
  ASSERT_TRUE(document.GetAcqDataWellRecord(&record, 2, 1, DataRAWa));
  EXPECT_EQ(record.data[0], 3500);
  Vex2GlobalComplex settings;
  ASSERT_EQ(document.GetGlobalComplexInfo(&settings), kSuccess);
  const std::string log(reinterpret_cast<const char*>(settings.logData), settings.logLength);
  EXPECT_THAT(log, testing::HasSubstr("scale=1000\n"));
  EXPECT_THAT(log, testing::HasSubstr("frames=6\n"));
}

TEST_F(RunRecorderTest, ResumesMeasuredRunToSameBytes) {
  {
    RunRecorder whole(path(), measuredPlan());
    for (std::size_t i = 0; i < kFrames; ++i) whole.Append(measuredFrame(i));
    whole.Finish();
  }
  const auto expected = ReadBytes(path());
  std::filesystem::remove(path());
  for (std::size_t i = 0; i < kFrames; ++i) {
    RunRecorder part(path(), measuredPlan(), {.resume = true});
    ASSERT_EQ(part.RecordedFrames(), i);
    part.Append(measuredFrame(i));
    if (i + 1 == kFrames) part.Finish();
  }
  EXPECT_EQ(ReadBytes(path()), expected);
}

TEST_F(RunRecorderTest, DestroyedWithoutFinishCanBeResumed) {
  record(2);
  expectFrames(2);
  RunRecorder resumed = recorder({.resume = true});
  EXPECT_EQ(resumed.RecordedFrames(), 2U);
  for (std::size_t i = 2; i < kFrames; ++i) resumed.Append(rawFrame(i));
  resumed.Finish();
  expectFrames(kFrames);
}

TEST_F(RunRecorderTest, KilledAtAnyFrameKeepsAllBefore) {
  for (std::size_t kept = 0; kept <= kFrames; ++kept) {
    std::filesystem::remove(path());
    ASSERT_TRUE(IsKilled([&] {
      RunRecorder made = recorder();
      for (std::size_t i = 0; i < kept; ++i) made.Append(rawFrame(i));
      return ::kill(::getpid(), SIGKILL);
    }));
    expectFrames(kept);
    RunRecorder resumed = recorder({.resume = true});
    ASSERT_EQ(resumed.RecordedFrames(), kept);
    for (std::size_t i = kept; i < kFrames; ++i) resumed.Append(rawFrame(i));
    resumed.Finish();
    expectFrames(kFrames);
  }
}

TEST_F(RunRecorderTest, KilledAtEachCallLosesNoFrame) {
  int kills = 0;
  for (int call = 0;; ++call) {
    std::filesystem::remove(path());
    const bool killed = IsKilled([&] {
      FaultyFileSystem files;
      files.SkipSyncs();
      files.KillAt(call, FaultyFileSystem::Moment::halfway);
      RunRecorder made = recorder({.resume = true});
      for (std::size_t i = 0; i < kFrames; ++i) made.Append(rawFrame(i));
      made.Finish();
      return 0;
    });
    if (!killed) break;
    ++kills;
    RunRecorder resumed = recorder({.resume = true});
    for (std::size_t i = resumed.FrameCount(); i < kFrames; ++i) resumed.Append(rawFrame(i));
    resumed.Finish();
    expectFrames(kFrames);
    ASSERT_FALSE(HasFailure()) << "killed at call " << call;
  }
  EXPECT_GT(kills, 20);
}

TEST_F(RunRecorderTest, RejectsFrameThatIsNotOneReadingOfEachWell) {
  RunRecorder made = recorder();
  auto frame = rawFrame(0);
  EXPECT_THAT(messageOf([&] { made.Append(std::span(frame).first(1)); }),
              testing::HasSubstr("readings of 1 well, but the run has 2 wells"));
  frame[1].well = 1;
  EXPECT_THAT(messageOf([&] { made.Append(frame); }),
              testing::HasSubstr("two readings of well A1"));
  frame[1].well = 3;
  EXPECT_THAT(messageOf([&] { made.Append(frame); }),
              testing::HasSubstr("well 3, which the plan does not have"));
  frame = rawFrame(0);
  frame[1].leading[0] = 0;
  const lab::Error error = ErrorOf([&] { made.Append(frame); });
  EXPECT_THAT(error.what(), testing::HasSubstr("frame 0 is incomplete"));
  EXPECT_EQ(error.Class(), lab::ErrorClass::kUsage);
  EXPECT_EQ(error.File(), path());
  made.Append(rawFrame(0));
  expectFrames(1);
}

TEST_F(RunRecorderTest, RejectsReadingBeyondScale) {
  RunRecorder made(path(), measuredPlan());
  lab::MeasuredFrame frame = measuredFrame(0);
  frame.wells[1].values = {65.536};
  EXPECT_THAT(messageOf([&] { made.Append(frame); }),
              testing::HasSubstr("frame 0, well B2: the reading 65.536 does not fit"));
  frame.wells[1].values = {};
  EXPECT_THAT(messageOf([&] { made.Append(frame); }),
              testing::HasSubstr("0 readings, but the run has 1 channel"));
  EXPECT_THAT(
      messageOf([&] { made.Append(rawFrame(0)); }),
      testing::HasSubstr(
          "cannot append frame 0: the plan has a scale, so frames are given in real units"));
  frame.wells[0].values = {1.0};
  frame.wells[0].time = -1;
  EXPECT_THAT(messageOf([&] { made.Append(frame); }),
              testing::HasSubstr(": the time -1 does not fit into a document"));
  EXPECT_EQ(made.FrameCount(), 0U);
}

TEST_F(RunRecorderTest, RejectsCycleNotAboveLastOfItsStage) {
  lab::MeasuredFrame melting = measuredFrame(0);
  melting.stage = lab::Stage::kMelting;
  {
    RunRecorder made(path(), measuredPlan());
    for (std::size_t i = 0; i < 3; ++i) made.Append(measuredFrame(i));
    made.Append(melting);
  }
  // The program was interrupted and begins again with the first frame.
  RunRecorder resumed(path(), measuredPlan(), {.resume = true});
  const lab::Error error = ErrorOf([&] { resumed.Append(measuredFrame(0)); });
  EXPECT_EQ(error.what(), path() +
                              ": cannot append frame 4 as amplification cycle 1: cycle 3 of that "
                              "stage is recorded already; continue with cycle 4");
  EXPECT_EQ(error.Class(), lab::ErrorClass::kUsage);
  EXPECT_THAT(messageOf([&] { resumed.Append(melting); }),
              testing::HasSubstr("as melt cycle 1: cycle 1 of that stage"));
  lab::MeasuredFrame none = measuredFrame(0);
  none.cycle = 0;
  EXPECT_THAT(messageOf([&] { resumed.Append(none); }),
              testing::HasSubstr("as amplification cycle 0: cycles count from 1"));
  EXPECT_EQ(resumed.FrameCount(), 4U);
  resumed.Append(measuredFrame(3));
  EXPECT_EQ(resumed.FrameCount(), 5U);
}

TEST_F(RunRecorderTest, RejectsFrameAfterLastAndAfterFinish) {
  RunRecorder made = recorder();
  EXPECT_THAT(messageOf([&] { made.Finish(); }),
              testing::HasSubstr("cannot finish: 0 of 6 frames are recorded"));
  for (std::size_t i = 0; i < kFrames; ++i) made.Append(rawFrame(i));
  EXPECT_THAT(messageOf([&] { made.Append(rawFrame(kFrames)); }),
              testing::HasSubstr("the plan has 6 frames"));
  made.Finish();
  const auto bytes = ReadBytes(path());
  EXPECT_THAT(messageOf([&] { made.Append(rawFrame(0)); }),
              testing::HasSubstr("the run is complete (status DONE)"));
  made.Finish();
  EXPECT_EQ(ReadBytes(path()), bytes);
}

TEST_F(RunRecorderTest, ResumeOfFinishedRunHasNothingLeft) {
  {
    RunRecorder made = recorder();
    for (std::size_t i = 0; i < kFrames; ++i) made.Append(rawFrame(i));
    made.Finish();
  }
  const auto bytes = ReadBytes(path());
  RunRecorder resumed = recorder({.resume = true});
  EXPECT_TRUE(resumed.IsFinished());
  EXPECT_EQ(resumed.FrameCount(), kFrames);
  EXPECT_EQ(ReadBytes(path()), bytes);
}

TEST_F(RunRecorderTest, RefusesSecondRecorder) {
  const RunRecorder first = recorder();
  EXPECT_THAT(messageOf([&] { recorder({.resume = true}); }),
              testing::HasSubstr("is being recorded already"));
}

TEST_F(RunRecorderTest, RefusesExistingDocumentUnlessAsked) {
  record(1);
  const lab::Error error = ErrorOf([&] { recorder(); });
  EXPECT_EQ(error.Code(), ErrorCode::kExists);
  expectFrames(1);
  recorder({.replace = true});
  expectFrames(0);
}

TEST_F(RunRecorderTest, RefusesDocumentWithHardLinks) {
  record(1);
  std::filesystem::create_hard_link(path(), folder_ / "other.vex");
  EXPECT_THAT(messageOf([&] { recorder({.resume = true}); }), testing::HasSubstr("hard links"));
  expectFrames(1);
}

TEST_F(RunRecorderTest, RefusesToResumeAnotherRun) {
  record(2);
  const auto bytes = ReadBytes(path());
  const auto differs = [&](const auto& change) {
    RecordingPlan plan = rawPlan();
    change(plan);
    return messageOf([&] { RunRecorder(path(), plan, {.resume = true}); });
  };
  EXPECT_THAT(differs([](RecordingPlan& plan) { plan.plate.wells[0].sample = "C"; }),
              testing::HasSubstr("sample of well A1 is 'A' in the document"));
  EXPECT_THAT(differs([](RecordingPlan& plan) { plan.wells = {1}; }),
              testing::HasSubstr("other wells"));
  EXPECT_THAT(differs([](RecordingPlan& plan) { plan.comment = "third"; }),
              testing::HasSubstr("comment"));
  EXPECT_THAT(differs([](RecordingPlan& plan) {
                plan.program = {95, 60};
              }),
              testing::HasSubstr("program"));
  EXPECT_THAT(differs([](RecordingPlan& plan) { plan.scale = lab::ReadingScale(2); }),
              testing::HasSubstr("recorded without"));
  EXPECT_EQ(ReadBytes(path()), bytes);
}

TEST_F(RunRecorderTest, NoOutputReplacesRunInProgress) {
  record(1);
  lab::OutputFiles files(true, "");
  files.Write(path(), lab::OutputFiles::Kind::kDocument);
  EXPECT_THAT(messageOf([&] { files.Claim(); }), testing::HasSubstr("its run is in progress"));
}

TEST_F(RunRecorderTest, RefusesToResumeDamagedDocument) {
  record(1);
  const Bytes whole = ReadBytes(path());
  const std::size_t block = LongAt(whole, kRawDataOffsetAt);
  const auto cutTo = [&](std::size_t size) { return Slice(whole, 0, size); };
  const auto refusalOf = [&](const Bytes& document) {
    WriteBytes(path(), document);
    const std::string why = messageOf([&] { recorder({.resume = true}); });
    EXPECT_EQ(FirstDifference(ReadBytes(path()), document), "");
    return why;
  };
  EXPECT_THAT(refusalOf(cutTo(500)), testing::HasSubstr("the header is cut short"));
  EXPECT_THAT(refusalOf(cutTo(block + kBlockHead + 2)),
              testing::HasSubstr("the data block is cut off before its first frame"));
  const std::string more = "more bytes follow than an interrupted commit leaves behind";
  const Bytes record = ByteString().Text("CALR").Long(2).Text("a").Byte(0);
  EXPECT_THAT(refusalOf(Join({whole, record})), testing::HasSubstr(more));
  // Documents without a data block: one ends with a record that the file cuts off, one with more
  // bytes than a first commit leaves.
  Bytes unread = cutTo(block);
  SetLongAt(unread, kRawDataOffsetAt, 0);
  const Bytes cut = ByteString().Text("CALR").Long(9).Text("a");
  EXPECT_THAT(refusalOf(Join({unread, cut})), testing::HasSubstr(more));
  EXPECT_THAT(refusalOf(Join({unread, Bytes(kBlockHead + 96 * 82 + 1)})), testing::HasSubstr(more));
}

TEST_F(RunRecorderTest, FailedCommitCanBeTriedAgain) {
  FaultyFileSystem files;
  RunRecorder made = recorder();
  made.Append(rawFrame(0));
  files.FailKind(FileCall::write, ENOSPC);
  const lab::Error error = ErrorOf([&] { made.Append(rawFrame(1)); });
  EXPECT_EQ(error.Code(), ErrorCode::kDiskFull);
  EXPECT_EQ(made.FrameCount(), 1U);
  files.Heal(FileCall::write);
  expectFrames(1);
  for (std::size_t i = 1; i < kFrames; ++i) made.Append(rawFrame(i));
  made.Finish();
  expectFrames(kFrames);
}

// The frame has only one well: setting this well again after a failed commit must not count the
// frame twice.
TEST_F(RunRecorderTest, FailedCommitOfOneWellCountsOnce) {
  RecordingPlan plan = rawPlan();
  plan.plate.wells.resize(1);
  const auto frameOf = [](std::size_t index) {
    auto frame = rawFrame(index);
    frame.resize(1);
    return frame;
  };
  const auto recordTo = [&](const std::string& path, bool failing) {
    FaultyFileSystem files;
    RunRecorder made(path, plan);
    for (std::size_t i = 0; i < kFrames; ++i) {
      if (failing && i % 2 == 0) {
        files.FailKind(FileCall::write, ENOSPC);
        EXPECT_EQ(ErrorOf([&] { made.Append(frameOf(i)); }).Code(), ErrorCode::kDiskFull);
        files.Heal(FileCall::write);
      }
      made.Append(frameOf(i));
    }
    made.Finish();
  };
  recordTo(path(), true);
  const std::string smooth = folder_ / "smooth.vex";
  recordTo(smooth, false);
  EXPECT_EQ(FirstDifference(ReadBytes(path()), ReadBytes(smooth)), "");
}

TEST_F(RunRecorderTest, FinishLeavesOutAFrameWhoseCommitFailed) {
  FaultyFileSystem files;
  RecordingPlan plan = rawPlan();
  plan.frameCount.reset();
  RunRecorder made(path(), plan);
  made.Append(rawFrame(0));
  files.FailKind(FileCall::write, ENOSPC);
  EXPECT_EQ(ErrorOf([&] { made.Append(rawFrame(1)); }).Code(), ErrorCode::kDiskFull);
  files.Heal(FileCall::write);
  made.Finish();
  expectFrames(1);
}

TEST_F(RunRecorderTest, NeverWritesToAnotherFileInItsPlace) {
  const std::string other = folder_ / "other.vex";
  {
    RunRecorder made(other, rawPlan());
    for (std::size_t i = 0; i < kFrames; ++i) made.Append(rawFrame(i));
    made.Finish();
  }
  const Bytes bytes = ReadBytes(other);
  for (const bool inPlace : {true, false}) {
    std::filesystem::remove(path());
    RunRecorder made = recorder();
    made.Append(rawFrame(0));
    if (inPlace) {
      WriteBytes(path(), bytes);
    } else {
      std::filesystem::copy_file(other, folder_ / "copy.vex");
      std::filesystem::rename(folder_ / "copy.vex", path());
    }
    EXPECT_THAT(
        messageOf([&] { made.Append(rawFrame(1)); }),
        testing::HasSubstr("another program has changed or replaced the file since the last "
                           "frame; check the file, then record or resume again"));
    EXPECT_EQ(FirstDifference(ReadBytes(path()), bytes), "");
  }
}

TEST_F(RunRecorderTest, FailedSyncIsFinalUntilResumed) {
  FaultyFileSystem files;
  {
    RunRecorder made = recorder();
    made.Append(rawFrame(0));
    files.FailKind(FileCall::syncData, EIO);
    EXPECT_EQ(ErrorOf([&] { made.Append(rawFrame(1)); }).Class(), lab::ErrorClass::kSystem);
    files.Heal(FileCall::syncData);
    EXPECT_THAT(
        messageOf([&] { made.Append(rawFrame(1)); }),
        testing::HasSubstr("the disk failed to store an earlier change, so what the file holds is "
                           "uncertain; check the disk and resume with a new recorder"));
    EXPECT_THAT(messageOf([&] { made.Finish(); }),
                testing::HasSubstr("failed to store an earlier change"));
  }
  RunRecorder resumed = recorder({.resume = true});
  EXPECT_GE(resumed.FrameCount(), 1U);
}

TEST_F(RunRecorderTest, ResumeSyncsEachRepairBeforeTheNext) {
  record(2);
  Bytes document = ReadBytes(path());
  SetLongAt(document, kRawDataOffsetAt, LongAt(document, kRawDataOffsetAt) + 1);
  document.resize(document.size() - 10);  // within the second frame
  WriteBytes(path(), document);
  FaultyFileSystem files;
  const RunRecorder resumed = recorder({.resume = true});
  EXPECT_EQ(resumed.FrameCount(), 1U);
  EXPECT_THAT(files.Changes(), testing::HasSubstr("WDWDTD"))
      << "the length, the header's offset, and the end";
}

TEST_F(RunRecorderTest, ThrowsErrorForUnusablePaths) {
  EXPECT_EQ(ErrorOf([&] { RunRecorder("", rawPlan()); }).Class(), lab::ErrorClass::kUsage);
  EXPECT_EQ(ErrorOf([&] { RunRecorder(folder_ / "no/run.vex", rawPlan()); }).Code(),
            ErrorCode::kNoSuchFile);
  RecordingPlan plan = rawPlan();
  plan.plate.wells[0].sample = "\xE2\x82\xAC";
  EXPECT_EQ(ErrorOf([&] { RunRecorder(path(), plan); }).Code(), ErrorCode::kInvalidValue);
  EXPECT_FALSE(std::filesystem::exists(path()));
}

}  // namespace
}  // namespace vex2::test
