// Tests the promises of RunFollower: it returns each committed frame once and in order, whatever
// the recorder does, and never delays the recorder.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

#include "lab/Error.h"
#include "lab/record/RunFollower.h"
#include "lab/record/RunRecorder.h"
#include "tests/lab/ErrorOf.h"
#include "tests/lab/RunDocuments.h"
#include "tests/reliability/ForkedProcess.h"
#include "tests/support/Files.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

using lab::FollowState;
using lab::RunFollower;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr milliseconds kNoWait(0);
constexpr std::size_t kFollowedFrames = 5;

class RunFollowerTest : public TempFolderTest {
 protected:
  std::string path() const { return folder_ / "run.vex"; }

  static lab::RecordingPlan plan() {
    lab::RecordingPlan plan;
    plan.plate.wells = {{.number = 1, .name = {}, .sample = "A", .targets = {}},
                        {.number = 3, .name = {}, .sample = "B", .targets = {}}};
    plan.frameCount = kFollowedFrames;
    plan.scale = lab::ReadingScale(1000);
    plan.started = "2026-11-22T08:00:00Z";
    return plan;
  }

  static lab::MeasuredFrame frame(std::size_t index) {
    const auto number = static_cast<double>(index);
    return {.stage = lab::Stage::kAmplification,
            .cycle = static_cast<std::uint16_t>(index + 1),
            .wells = {{.well = 1, .temperature = 60, .time = 30 * number, .values = {number}},
                      {.well = 3, .temperature = 60, .time = 30 * number, .values = {2.5}}}};
  }

  lab::RunRecorder recorder(lab::RecorderOptions options = {}) const {
    return lab::RunRecorder(path(), plan(), options);
  }

  void record(std::size_t frames, bool finish = false) const {
    lab::RunRecorder made = recorder();
    for (std::size_t i = 0; i < frames; ++i) made.Append(frame(i));
    if (finish) made.Finish();
  }

  // Takes all frames that are available now and checks their readings. Returns their indexes.
  static std::vector<std::uint64_t> take(RunFollower& follower) {
    std::vector<std::uint64_t> taken;
    while (const auto next = follower.Next(kNoWait)) {
      EXPECT_EQ(next->wells.at(0).fluorescence.at(0), static_cast<double>(next->index));
      EXPECT_EQ(next->position.cycle, next->index + 1);
      taken.push_back(next->index);
    }
    return taken;
  }
};

TEST_F(RunFollowerTest, WaitsForADocumentThatIsNotThereYet) {
  RunFollower follower(path());
  EXPECT_EQ(follower.Next(kNoWait), std::nullopt);
  EXPECT_EQ(follower.State(), FollowState::kWaiting);
  WriteBytes(path(), {});
  EXPECT_EQ(follower.Next(kNoWait), std::nullopt);
  EXPECT_EQ(follower.State(), FollowState::kWaiting);
  std::filesystem::remove(path());
  record(1);
  EXPECT_EQ(take(follower), (std::vector<std::uint64_t>{0}));
  EXPECT_EQ(follower.State(), FollowState::kRunning);
}

TEST_F(RunFollowerTest, ReturnsEachFrameOnceDuringTheRun) {
  RunFollower follower(path());
  auto recording = recorder();
  EXPECT_EQ(take(follower), std::vector<std::uint64_t>{});
  for (std::uint64_t i = 0; i < kFollowedFrames; ++i) {
    recording.Append(frame(i));
    EXPECT_EQ(take(follower), (std::vector<std::uint64_t>{i}));
    EXPECT_EQ(follower.State(), FollowState::kRunning);
  }
  EXPECT_EQ(follower.PlannedFrames(), kFollowedFrames);
  recording.Finish();
  EXPECT_EQ(follower.Next(seconds(60)), std::nullopt);  // returns without waiting
  EXPECT_EQ(follower.State(), FollowState::kDone);
}

TEST_F(RunFollowerTest, GivesAllFramesOfACompleteRun) {
  record(kFollowedFrames, true);
  RunFollower follower(path());
  EXPECT_EQ(take(follower), (std::vector<std::uint64_t>{0, 1, 2, 3, 4}));
  EXPECT_EQ(follower.State(), FollowState::kDone);
  EXPECT_EQ(follower.Run()->Plate().wells.at(0).sample, "A");
}

TEST_F(RunFollowerTest, BeginsWithTheFrameThatWasAskedFor) {
  record(3);
  RunFollower follower(path(), 2);
  EXPECT_EQ(take(follower), (std::vector<std::uint64_t>{2}));
  EXPECT_EQ(follower.NextFrame(), 3U);
  EXPECT_EQ(follower.CommittedFrames(), 3U);
}

TEST_F(RunFollowerTest, ContinuesWhenTheRunIsResumed) {
  RunFollower follower(path());
  record(2);
  EXPECT_EQ(take(follower), (std::vector<std::uint64_t>{0, 1}));
  auto resumed = recorder({.resume = true});
  resumed.Append(frame(2));
  EXPECT_EQ(take(follower), (std::vector<std::uint64_t>{2}));
}

TEST_F(RunFollowerTest, LeavesOutUncommittedBytesOfAKilledCommit) {
  RunFollower follower(path());
  record(2);
  EXPECT_EQ(take(follower).size(), 2U);
  std::ofstream(path(), std::ios::app) << std::string(100, '\1');
  EXPECT_EQ(take(follower), std::vector<std::uint64_t>{});
  auto resumed = recorder({.resume = true});
  resumed.Append(frame(2));
  EXPECT_EQ(take(follower), (std::vector<std::uint64_t>{2}));
}

TEST_F(RunFollowerTest, ContinuesAfterASaveOfTheWholeDocument) {
  RunFollower follower(path());
  record(3);
  EXPECT_EQ(take(follower).size(), 3U);
  const Bytes content = ReadBytes(path());
  std::filesystem::remove(path());
  EXPECT_EQ(take(follower), std::vector<std::uint64_t>{});
  EXPECT_EQ(follower.State(), FollowState::kRunning);
  WriteBytes(path(), content);
  EXPECT_EQ(take(follower), std::vector<std::uint64_t>{});
}

TEST_F(RunFollowerTest, ContinuesAfterASaveInPlaceMovedTheFrames) {
  RunFollower follower(path());
  record(2);
  EXPECT_EQ(take(follower).size(), 2U);
  const std::string other = folder_ / "other.vex";
  lab::RecordingPlan longer = plan();
  longer.comment = std::string(1000, 'x');
  {
    lab::RunRecorder recording(other, longer);
    for (std::size_t i = 0; i < 3; ++i) recording.Append(frame(i));
  }
  WriteBytes(path(), ReadBytes(other));
  EXPECT_EQ(take(follower), (std::vector<std::uint64_t>{2}));
}

TEST_F(RunFollowerTest, RefusesAnotherRunThatReplacedTheFollowedOne) {
  RunFollower follower(path());
  record(3);
  EXPECT_EQ(take(follower).size(), 3U);
  std::filesystem::remove(path());
  record(1);
  const lab::Error error = ErrorOf([&] { static_cast<void>(follower.Next(kNoWait)); });
  EXPECT_EQ(error.Code(), lab::ErrorCode::kDocument);
  EXPECT_THAT(error.what(),
              testing::HasSubstr("another run has taken the place of the one that was "
                                 "followed, after 3 frames; follow it anew"));
  EXPECT_EQ(follower.NextFrame(), 3U);
}

TEST_F(RunFollowerTest, RefusesADocumentThatEndsInFrontOfItsReadings) {
  record(1);
  std::filesystem::resize_file(path(), 1040);
  RunFollower follower(path());
  EXPECT_THAT(ErrorOf([&] { static_cast<void>(follower.Next(kNoWait)); }).what(),
              testing::HasSubstr("it has no readings that can be followed: "));
}

TEST_F(RunFollowerTest, RefusesAPathInAFolderThatIsNotThere) {
  RunFollower follower(folder_ / "none/run.vex");
  EXPECT_EQ(ErrorOf([&] { static_cast<void>(follower.Next(kNoWait)); }).Code(),
            lab::ErrorCode::kNoSuchFile);
}

TEST_F(RunFollowerTest, RefusesAFileThatIsNoDocument) {
  WriteBytes(path(), ToBytes("well,cycle\n"));
  RunFollower follower(path());
  EXPECT_EQ(ErrorOf([&] { static_cast<void>(follower.Next(kNoWait)); }).Code(),
            lab::ErrorCode::kNoDocument);
}

TEST_F(RunFollowerTest, FollowsARunOfAnyHost) {
  ForeignRun run(path(), 4);
  RunFollower follower(path());
  run.Begin();
  EXPECT_EQ(follower.Next(kNoWait), std::nullopt);
  for (std::uint64_t i = 0; i < 3; ++i) {
    run.Append();
    const auto frame = follower.Next(kNoWait);
    ASSERT_TRUE(frame.has_value());
    EXPECT_EQ(frame->index, i);
    EXPECT_EQ(frame->wells.size(), 4U);
  }
  EXPECT_EQ(follower.PlannedFrames(), std::nullopt);
}

// If the follower held a lock, the recorder would wait for its file and fail after two seconds.
TEST_F(RunFollowerTest, HoldsNoLockWhileItFollows) {
  auto recording = recorder();
  recording.Append(frame(0));
  RunFollower follower(path());
  EXPECT_EQ(take(follower).size(), 1U);
  std::jthread waiting([&] { static_cast<void>(follower.Next(seconds(1))); });
  CFile file;
  EXPECT_TRUE(file.Open(path().c_str(), CFile::modeReadWrite));
  waiting.join();
}

TEST_F(RunFollowerTest, GivesTheFramesOfAWriterThatIsKilledAndResumed) {
  RunFollower follower(path());
  std::vector<std::uint64_t> taken;
  for (std::size_t stop = 1; stop <= kFollowedFrames; ++stop) {
    const pid_t child = ::fork();
    if (child == 0) {
      auto recording = recorder({.resume = std::filesystem::exists(path())});
      for (std::size_t i = recording.RecordedFrames(); i < stop; ++i) recording.Append(frame(i));
      ::kill(::getpid(), SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status));
    for (const std::uint64_t index : take(follower)) taken.push_back(index);
  }
  EXPECT_EQ(taken, (std::vector<std::uint64_t>{0, 1, 2, 3, 4}));
}

}  // namespace
}  // namespace vex2::test
