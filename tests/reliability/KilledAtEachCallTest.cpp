// Tests that a recorder that is killed at any system call loses no frame whose commit returned, and
// that another process can continue the run.
#include "tests/reliability/ForkedProcess.h"
#include "tests/reliability/RunOnDisk.h"

namespace vex2::test {
namespace {

using Moment = FaultyFileSystem::Moment;

constexpr int kFrames = 45;
constexpr std::uint64_t kWord = 4;

class KilledAtEachCall : public RunOnDisk, public testing::WithParamInterface<std::uint16_t> {
 protected:
  KilledAtEachCall() {
    wells_ = GetParam();
    whole_ = documentOf(kFrames + 1);
  }

  // Records the run from a document without frames. `committed` counts the frames whose commit
  // returned.
  int run(std::atomic<int>& committed) {
    OpenedManager manager;
    begin(manager);
    for (int i = 0; i < kFrames; ++i) {
      if (append(manager, i) != kSuccess) return 1;
      ++committed;
    }
    return 0;
  }
  // The system calls of a run that is not killed.
  std::vector<FileOperation> callsOfARun() {
    std::atomic<int> committed = 0;
    files_.Restart();
    files_.SkipSyncs();
    EXPECT_EQ(run(committed), 0);
    std::vector<FileOperation> calls;
    for (const FileOperation& call : files_.Log()) {
      if (call.call != FileCall::close) calls.push_back(call);
    }
    return calls;
  }
  // Whether a run that is killed at this call keeps the committed frames and can be continued.
  bool keepsWhatWasCommitted(int call, Moment moment) {
    SharedCount committed;
    const bool killed = IsKilled([&] {
      files_.Restart();
      files_.SkipSyncs();
      files_.KillAt(call, moment);
      return run(*committed);
    });
    EXPECT_TRUE(killed);
    const int frames = readableFrames();
    const bool kept = frames == *committed || frames == *committed + 1;
    EXPECT_TRUE(kept) << frames << " frames of " << *committed << " committed";
    if (!kept) return false;
    EXPECT_EQ(goOn(), kSuccess);
    const std::string difference = FirstDifference(ReadBytes(path_), expected(frames + 1));
    EXPECT_EQ(difference, "") << "after going on";
    return difference.empty();
  }

  // A document with this many frames, cut from the longest document.
  Bytes expected(int frames) const {
    Bytes bytes = whole_;
    const std::size_t body = 18 + 82UL * wells_ + 80UL * wells_ * static_cast<unsigned>(frames - 1);
    bytes.resize(1024 + 8 + body);
    SetLongAt(bytes, 1028, body);
    return bytes;
  }

  FaultyFileSystem files_;
  Bytes whole_;
};

TEST_P(KilledAtEachCall, KeepsEveryCommittedFrameAndCanBeResumed) {
  const auto calls = callsOfARun();
  ASSERT_GE(calls.size(), 4U * kFrames);
  struct Point {
    int call;
    Moment moment;
  };
  std::vector<Point> points;
  for (int call = 0; call < static_cast<int>(calls.size()); ++call) {
    const FileOperation& operation = calls[static_cast<std::size_t>(call)];
    points.push_back({call, Moment::before});
    // Without a power cut, the system writes four bytes completely or not at all.
    if (operation.call == FileCall::write && operation.count > kWord) {
      points.push_back({call, Moment::halfway});
    }
    points.push_back({call, Moment::after});
  }
  // The step is odd, so that the sample includes every kind of call.
  const std::size_t step = FullSweeps() ? 1 : points.size() / 16 | 1U;
  SweepResult result{.promise = "the process is killed",
                     .sweep = "SIGKILL before, within and after each system call of a run of " +
                              std::to_string(kFrames) + " frames of 8, 96 and 384 wells"};
  files_.Restart();
  files_.SkipSyncs();
  for (std::size_t i = 0; i < points.size(); i += step) {
    SCOPED_TRACE("call " + std::to_string(points[i].call) + " moment " +
                 std::to_string(static_cast<int>(points[i].moment)));
    ++result.points;
    ++result.states;
    if (!keepsWhatWasCommitted(points[i].call, points[i].moment)) ++result.bad;
  }
  ReportSweep(result);
  EXPECT_EQ(result.bad, 0U);
}

INSTANTIATE_TEST_SUITE_P(Plates, KilledAtEachCall, testing::Values(8, 96, 384));

}  // namespace
}  // namespace vex2::test
