// A recording process that dies at any moment, and not only at a system call, loses no frame whose
// commit returned.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <random>
#include <thread>

#include "tests/support/RunDocument.h"
#include "tests/support/SilentHost.h"
#include "tests/support/Sweep.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

constexpr int kMostFrames = 24;
constexpr int kMostMicroseconds = 1500;  // some commits' time

class KilledAtAnyTime : public TempFolderTest, public testing::WithParamInterface<std::uint16_t> {
 protected:
  // Runs in a process of its own, and tells `pipe` one byte for the document and one a frame.
  [[noreturn]] void record(int pipe) {
    const auto tell = [pipe] {
      if (::write(pipe, "x", 1) != 1) ::_exit(1);
    };
    Vex2FileManager manager;
    if (manager.SaveToFile(path_.c_str()) != kSuccess) ::_exit(2);
    tell();
    for (int i = 0; i < kMostFrames; ++i) {
      const Vex2FrameData frame = MakeFrame(GetParam(), i);
      if (manager.AppendAcquisitionDataFrame(path_.c_str(), &frame, DataRAWa) != kSuccess) {
        ::_exit(3);
      }
      tell();
    }
    ::_exit(0);
  }

  // Kills a recorder so long after it told of `count` things, which leaves the moment to chance on
  // fast machines and slow ones; what it had told before.
  int killAfter(int count, std::chrono::microseconds delay) {
    int pipe[2];
    EXPECT_EQ(::pipe(pipe), 0);
    const pid_t recorder = ::fork();
    if (recorder == 0) {
      ::close(pipe[0]);
      record(pipe[1]);
    }
    ::close(pipe[1]);
    int told = 0;
    char byte = 0;
    while (told < count && ::read(pipe[0], &byte, 1) == 1) ++told;
    std::this_thread::sleep_for(delay);
    EXPECT_EQ(::kill(recorder, SIGKILL), 0);
    int status = 0;
    EXPECT_EQ(::waitpid(recorder, &status, 0), recorder);
    EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0) << WEXITSTATUS(status);
    while (::read(pipe[0], &byte, 1) == 1) ++told;
    ::close(pipe[0]);
    return told;
  }

  void expectFrames(int committed) {
    Vex2FileManager reader;
    ASSERT_EQ(reader.ReadFromFile(path_.c_str()), kSuccess);
    ASSERT_EQ(std::string(reader.GetHeaderData().magic, 4), "Vex2");
    const int frames = reader.GetDataFrameCount(DataRAWa);
    ASSERT_TRUE(frames == committed || frames == committed + 1) << frames << " " << committed;
    for (int i = 0; i < frames; ++i) {
      Vex2FrameData frame;
      ASSERT_EQ(reader.ReadDataFrame(i, &frame, DataRAWa), kSuccess);
      ASSERT_TRUE(SameFrame(frame, MakeFrame(GetParam(), i))) << i;
    }
    for (int i = 0; i < committed; ++i) {
      Vex2FrameData frame;
      ASSERT_EQ(reader.ReadDataFrame(path_.c_str(), i, &frame, DataRAWa), kSuccess);
      ASSERT_TRUE(SameFrame(frame, MakeFrame(GetParam(), i))) << i;
    }
  }

  SilentHost host_;
  std::string path_ = folder_ / "run.vex";
};

TEST_P(KilledAtAnyTime, LosesNoFrameWhoseCommitReturned) {
  std::mt19937 random(GetParam());
  std::uniform_int_distribution<int> count(0, kMostFrames);
  std::uniform_int_distribution<int> delay(0, kMostMicroseconds);
  const int kills = InFullSweeps(100, 12);
  int cutShort = 0;
  for (int i = 0; i < kills; ++i) {
    std::filesystem::remove(path_);
    const int told = killAfter(count(random), std::chrono::microseconds(delay(random)));
    if (told == 0) continue;  // the document itself had not been saved yet
    ASSERT_NO_FATAL_FAILURE(expectFrames(told - 1)) << "kill " << i;
    if (told > 1 && told <= kMostFrames) ++cutShort;
  }
  EXPECT_GE(cutShort, kills / 4);  // else the moments were not those of a run
  ReportSweep({.promise = "the process is killed",
               .sweep = "SIGKILL at random moments of a run of 96 and 384 wells",
               .points = static_cast<std::uint64_t>(kills),
               .states = static_cast<std::uint64_t>(kills),
               .bad = 0});
}

INSTANTIATE_TEST_SUITE_P(Plates, KilledAtAnyTime, testing::Values(96, 384));

}  // namespace
}  // namespace vex2::test
