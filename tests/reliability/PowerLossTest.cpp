// Tests every state in which a power cut can leave the disk, at every point of a run.
#include <gtest/gtest.h>

#include "tests/support/MemoryDisk.h"
#include "tests/support/PowerCuts.h"
#include "tests/support/RunDocument.h"
#include "tests/support/SilentHost.h"
#include "tests/support/Sweep.h"

namespace vex2::test {
namespace {

const std::string kPath = "/no-such-folder/run.vex";
constexpr int kVolume = 25;
constexpr const char* kPowerLost = "power is lost";

/// Records a run on a disk in memory and checks the contents that the disk may have after a power
/// cut.
class PoweredRun {
 public:
  PoweredRun(int wells, int frames, int commentLength = 0)

      : wells_(static_cast<std::uint16_t>(wells)), frames_(frames) {
    Vex2FileManager manager;
    const std::string comment(static_cast<std::size_t>(commentLength), 'c');
    Vex2GlobalComplex settings;
    settings.sampleVolume = kVolume;
    settings.SetComment(comment.data(), commentLength);
    EXPECT_EQ(manager.ReplaceGlobalComplexComp(&settings), kSuccess);
    EXPECT_EQ(manager.SaveToFile(kPath.c_str()), kSuccess);
    disk_.Mark();
    for (int i = 0; i < frames; ++i) {
      const Vex2FrameData frame = MakeFrame(wells_, i);
      EXPECT_EQ(manager.AppendAcquisitionDataFrame(kPath.c_str(), &frame, DataRAWa), kSuccess);
      disk_.Mark();
    }
  }

  const std::vector<DiskStep>& Log() const { return disk_.Log(); }

  /// Why this content breaks the promise, or nothing. `returned` counts the operations that
  /// returned: the first is the save of the document without frames, the others are commits.
  std::string FaultOf(const std::optional<Bytes>& content, int returned) {
    if (!content) return returned == 0 ? "" : "there is no document";
    disk_.Put(kState, *content);
    Vex2FileManager reader;
    if (reader.ReadFromFile(kState.c_str()) != kSuccess) return "the document is not read";
    if (reader.GetSampleVolume() != kVolume) return "the document has lost what it held before";
    const int committed = std::max(returned - 1, 0);
    const int count = reader.GetDataFrameCount(DataRAWa);
    if (std::string fault = faultOfCount(count, committed); !fault.empty()) return fault;
    Vex2FrameData frame;
    for (int i = 0; i < count; ++i) {
      const int status = reader.ReadDataFrame(i, &frame, DataRAWa);
      if (status != kSuccess || !SameFrame(frame, expected(i))) return "another frame is read";
    }
    return faultOfFrameFile(committed, count);
  }

 private:
  std::string faultOfCount(int count, int committed) const {
    if (count == committed || count == std::min(committed + 1, frames_)) return {};
    return std::to_string(count) + " frames where " + std::to_string(committed) + " were committed";
  }

  // Why the frame count or the last frame, read without loading the document, breaks the promise.
  std::string faultOfFrameFile(int committed, int shown) {
    Vex2FileManager reader;
    int count = 0;
    if (reader.GetDataFrameCount(kState.c_str(), count, DataRAWa) != kSuccess) {
      return "the file's frames are not counted";
    }
    if (std::string fault = faultOfCount(count, committed); !fault.empty()) return fault;
    // A recorder that resumed such a run would lose the frames that it commits.
    if (count > shown) return "the header leads to frames that the document does not show";
    if (count == 0) return {};
    Vex2FrameData frame;
    const int status = reader.ReadDataFrame(kState.c_str(), count - 1, &frame, DataRAWa);
    return status == kSuccess && SameFrame(frame, expected(count - 1)) ? "" : "another last frame";
  }

  const Vex2FrameData& expected(int index) {
    while (made_.size() <= static_cast<std::size_t>(index)) {
      made_.push_back(MakeFrame(wells_, static_cast<int>(made_.size())));
    }
    return made_[static_cast<std::size_t>(index)];
  }

  const std::string kState = "/no-such-folder/state.vex";

  SilentHost host_;
  MemoryDisk disk_;
  std::uint16_t wells_;
  int frames_;
  std::vector<Vex2FrameData> made_;
};

/// The result of a visit to all states.
struct Verdict {
  std::uint64_t points = 0;
  std::uint64_t states = 0;
  std::uint64_t bad = 0;
  std::string first;  ///< the first fault and its point

  void Add(const Verdict& other) {
    points += other.points;
    states += other.states;
    bad += other.bad;
    if (first.empty()) first = other.first;
  }
};

Verdict Judge(PowerCuts& cuts,
              const std::function<std::string(const std::optional<Bytes>&, int)>& faultOf) {
  Verdict verdict;
  cuts.Visit([&](const std::optional<Bytes>& content, int returned) {
    const std::string fault = faultOf(content, returned);
    if (fault.empty()) return;
    ++verdict.bad;
    if (verdict.first.empty()) {
      verdict.first = fault + " at point " + std::to_string(cuts.PointCount()) + " after " +
                      std::to_string(returned) + " operations";
    }
  });
  verdict.points = cuts.PointCount();
  verdict.states = cuts.StateCount();
  return verdict;
}

/// The parameters of a run and of the visit to its states.
struct RunPlan {
  int wells;
  int frames;
  int commentLength = 0;
  std::uint64_t mostStates = 1000;
  int ignoredBarrier = -1;
  int ignoredFrom = 0;
};

Verdict JudgeRun(const RunPlan& plan) {
  PoweredRun run(plan.wells, plan.frames, plan.commentLength);
  PowerCuts cuts(run.Log(), kPath);
  cuts.SetMostStates(plan.mostStates);
  cuts.IgnoreBarrier(plan.ignoredBarrier, plan.ignoredFrom);
  return Judge(cuts,
               [&](const auto& content, int returned) { return run.FaultOf(content, returned); });
}

TEST(PowerLoss, InARunLeavesTheFramesWhoseCommitReturned) {
  Verdict verdict;
  const auto visit = [&](int wells, int frames, int lots) {
    const auto most = static_cast<std::uint64_t>(lots);
    verdict.Add(JudgeRun({.wells = wells, .frames = frames, .mostStates = most}));
  };
  // Small frames have few sectors, so all states can be visited; of larger frames only a part of
  // the states.
  for (const int wells : {1, 5, 12, 24}) visit(wells, InFullSweeps(45, 5), InFullSweeps(1000, 60));
  for (const int wells : {32, 40, 48}) visit(wells, InFullSweeps(18, 3), InFullSweeps(1000, 60));
  for (const int wells : {96, 384}) visit(wells, InFullSweeps(20, 3), 3);
  EXPECT_EQ(verdict.bad, 0U) << verdict.first;
  EXPECT_GE(verdict.states, FullSweeps() ? 100'000U : 1000U);
  ReportSweep({kPowerLost,
               "what a disk may hold after a cut at each write of runs, nine sizes of plates",
               verdict.points, verdict.states, verdict.bad});
}

// Operation 0 is the save of the document; the others are the commits of its frames.
class MissingBarrier : public testing::TestWithParam<std::pair<int, int>> {};

TEST_P(MissingBarrier, OfACommitLosesOrSpoilsFrames) {
  const auto [number, operation] = GetParam();
  const Verdict verdict = JudgeRun({.wells = 12,
                                    .frames = operation + 2,
                                    .mostStates = 200,
                                    .ignoredBarrier = number,
                                    .ignoredFrom = operation});
  EXPECT_GT(verdict.bad, 0U);
}

INSTANTIATE_TEST_SUITE_P(InTheFirstCommit, MissingBarrier,
                         testing::Values(std::pair{0, 1}, std::pair{1, 1}, std::pair{2, 1}));
INSTANTIATE_TEST_SUITE_P(InALaterCommit, MissingBarrier,
                         testing::Values(std::pair{0, 2}, std::pair{1, 2}));

/// Saves whole documents over each other in all ways, and keeps the content of the file after each
/// save.
class PoweredSaves {
 public:
  PoweredSaves() {
    Vex2FileManager manager;
    ThermocycleProgram program;
    program.length = 700;
    program.Allocate();
    EXPECT_EQ(manager.ReplaceThermocycleProgram(&program), kSuccess);
    Vex2PlateSetup setup;
    setup.Resize(96);
    EXPECT_EQ(manager.ReplacePlateSetup(&setup), kSuccess);
    Vex2PureDye dyes;
    dyes.SetEntryCount(20);
    EXPECT_EQ(manager.ReplacePureDye(&dyes), kSuccess);
    note(manager.SaveToFile(kPath.c_str()));
    for (int i = 0; i < 3; ++i) {
      const Vex2FrameData frame = MakeFrame(24, i);
      static_cast<void>(manager.AppendAcquisitionDataFrame(nullptr, &frame, DataRAWa));
      note(manager.SaveToFile(kPath.c_str()));
    }
    note(manager.SaveSetupInfo(kPath.c_str()));
    note(manager.SaveCalibrationInfo(kPath.c_str()));
    note(manager.SaveHeader(kPath.c_str(), manager.GetHeaderData()));
    note(manager.SaveToFile(kPath.c_str()));
  }

  Verdict JudgeAll(int ignoredBarrier = -1) {
    PowerCuts cuts(disk_.Log(), kPath);
    cuts.SetMostStates(static_cast<std::uint64_t>(InFullSweeps(2000, 30)));
    cuts.IgnoreBarrier(ignoredBarrier, 0);
    return Judge(cuts, [this](const auto& content, int returned) -> std::string {
      const auto done = static_cast<std::size_t>(returned);
      const bool isOld = content == documents_.at(done);
      const bool isNew = done + 1 < documents_.size() && content == documents_[done + 1];
      return isOld || isNew ? "" : "neither the old document nor the new one";
    });
  }

 private:
  void note(int status) {
    EXPECT_EQ(status, kSuccess);
    disk_.Mark();
    documents_.emplace_back(disk_.Content(kPath));
  }

  SilentHost host_;
  MemoryDisk disk_;
  std::vector<std::optional<Bytes>> documents_{std::nullopt};
};

TEST(PowerLoss, InASaveLeavesTheOldDocumentOrTheNewOne) {
  const Verdict verdict = PoweredSaves().JudgeAll();
  EXPECT_EQ(verdict.bad, 0U) << verdict.first;
  ReportSweep({"a save is interrupted", "power lost at each write, sync and rename of saves",
               verdict.points, verdict.states, verdict.bad});
}

TEST(PowerLoss, InASaveWithoutEitherSyncIsNoticed) {
  EXPECT_GT(PoweredSaves().JudgeAll(0).bad, 0U);
  EXPECT_GT(PoweredSaves().JudgeAll(1).bad, 0U);
}

}  // namespace
}  // namespace vex2::test
