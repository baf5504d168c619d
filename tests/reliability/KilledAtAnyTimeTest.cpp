// Tests that a recorder that is killed at any moment, not only at a system call, loses no frame
// whose commit returned.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <string>
#include <thread>

#include "tests/support/RunDocument.h"
#include "tests/support/SilentHost.h"
#include "tests/support/Sweep.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

constexpr int kMostFrames = 24;
constexpr int kMostMicroseconds = 1500;  // the time of several commits

class KilledAtAnyTime : public TempFolderTest, public testing::WithParamInterface<std::uint16_t> {
 protected:
  // Records in a child process. Writes one byte to `pipe` after the document was saved and after
  // each frame.
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

  struct Ending {
    bool isKilled = false;  // false if the recorder ended first
    int told = 0;
  };

  // Kills a recorder `delay` after it has written `count` bytes to the pipe, so that the moment is
  // random on fast and on slow machines.
  Ending killAfter(int count, std::chrono::microseconds delay) {
    int pipe[2];
    EXPECT_EQ(::pipe(pipe), 0);
    const pid_t recorder = ::fork();
    if (recorder == 0) {
      ::close(pipe[0]);
      record(pipe[1]);
    }
    ::close(pipe[1]);
    Ending ending;
    char byte = 0;
    while (ending.told < count && ::read(pipe[0], &byte, 1) == 1) ++ending.told;
    std::this_thread::sleep_for(delay);
    EXPECT_EQ(::kill(recorder, SIGKILL), 0);
    int status = 0;
    EXPECT_EQ(::waitpid(recorder, &status, 0), recorder);
    ending.isKilled = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
    EXPECT_TRUE(ending.isKilled || status == 0) << status;
    while (::read(pipe[0], &byte, 1) == 1) ++ending.told;
    ::close(pipe[0]);
    return ending;
  }

  // Describes what is wrong with the file after a recorder wrote `told` bytes to the pipe; empty if
  // nothing is wrong.
  std::string wrongAfter(int told) {
    // The document appears only when its first save is complete.
    if (told == 0 && !std::filesystem::exists(path_)) return {};
    Vex2FileManager reader;
    if (reader.ReadFromFile(path_.c_str()) != kSuccess) return "cannot be read";
    if (std::string(reader.GetHeaderData().magic, 4) != "Vex2") return "is no document";
    const int committed = std::max(told - 1, 0);
    const int frames = reader.GetDataFrameCount(DataRAWa);
    if (frames != committed && frames != committed + 1) {
      return std::to_string(frames) + " frames of " + std::to_string(committed);
    }
    Vex2FrameData frame;
    for (int i = 0; i < frames; ++i) {
      if (reader.ReadDataFrame(i, &frame, DataRAWa) != kSuccess ||
          !SameFrame(frame, MakeFrame(GetParam(), i))) {
        return "not frame " + std::to_string(i);
      }
    }
    for (int i = 0; i < committed; ++i) {
      if (reader.ReadDataFrame(path_.c_str(), i, &frame, DataRAWa) != kSuccess ||
          !SameFrame(frame, MakeFrame(GetParam(), i))) {
        return "not frame " + std::to_string(i) + " straight from the file";
      }
    }
    return {};
  }

  SilentHost host_;
  std::string path_ = folder_ / "run.vex";
};

TEST_P(KilledAtAnyTime, LosesNoFrameWhoseCommitReturned) {
  std::mt19937 random(GetParam());
  std::uniform_int_distribution<int> count(0, kMostFrames);
  std::uniform_int_distribution<int> delay(0, kMostMicroseconds);
  const auto kills = static_cast<std::uint64_t>(InFullSweeps(100, 12));
  SweepResult result{"the process is killed",
                     "SIGKILL at random moments of a run of 96 and 384 wells"};
  std::uint64_t cutShort = 0;
  // A recorder that ends before it is killed does not count.
  for (std::uint64_t i = 0; i < 3 * kills && result.points < kills; ++i) {
    std::filesystem::remove(path_);
    const Ending ending = killAfter(count(random), std::chrono::microseconds(delay(random)));
    if (!ending.isKilled) continue;
    ++result.points;
    ++result.states;
    if (ending.told > 1 && ending.told <= kMostFrames) ++cutShort;
    const std::string wrong = wrongAfter(ending.told);
    if (wrong.empty()) continue;
    ++result.bad;
    ADD_FAILURE() << "kill " << result.points << ": " << wrong;
  }
  EXPECT_EQ(result.points, kills);
  EXPECT_GE(cutShort, kills / 4);  // enough of the moments must be during the run
  ReportSweep(result);
}

INSTANTIATE_TEST_SUITE_P(Plates, KilledAtAnyTime, testing::Values(96, 384));

}  // namespace
}  // namespace vex2::test
