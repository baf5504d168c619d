// Tests that a commit that fails leaves the file unchanged, and that the same frame can be
// committed again. If even restoring the file fails, every earlier frame is intact and the next
// commit repairs the file.
#include "tests/reliability/RunOnDisk.h"

namespace vex2::test {
namespace {

constexpr const char* kCommitFails = "a commit fails";

struct Staged {
  int committed;  // the number of frames before the one that fails
  int error;
};

void PrintTo(const Staged& staged, std::ostream* out) {
  *out << staged.committed << " frames, error " << staged.error;
}

class FailedCommit : public RunOnDisk, public testing::WithParamInterface<Staged> {
 protected:
  int committed() const { return GetParam().committed; }
  // Commits `committed()` frames with `manager`, then one more frame while `count` of its file
  // calls fail, beginning with call `call`. Sets `status` to the status of that commit. Returns
  // false if the commit made no more than `call` calls, so that none failed.
  bool fail(OpenedManager& manager, int call, int count, int& status) {
    files_.Restart();
    files_.SkipSyncs();
    record(manager, committed());
    files_.Restart();
    files_.SkipSyncs();
    files_.FailCalls(call, count, GetParam().error);
    status = append(manager, committed());
    const bool struck = files_.HasFailed();
    syncFailed_ = files_.WasRefused(FileCall::syncData);
    files_.Restart();
    files_.SkipSyncs();
    EXPECT_FALSE(manager.IsOpen());
    EXPECT_TRUE(status == kSuccess || status == kWriteFailed || status == kReadFailed) << status;
    EXPECT_TRUE(struck || status == kSuccess) << status;
    return struck;
  }
  bool same(int frames) {
    const std::string difference = FirstDifference(ReadBytes(path_), documentOf(frames));
    EXPECT_EQ(difference, "");
    return difference.empty();
  }

  FaultyFileSystem files_;
  bool syncFailed_ = false;
};

TEST_P(FailedCommit, AtAnyCallLeavesTheFileAndCanBeRepeated) {
  SweepResult result{.promise = kCommitFails,
                     .sweep = "EIO and ENOSPC at each call, then the frame again"};
  for (int call = 0;; ++call) {
    SCOPED_TRACE("call " + std::to_string(call));
    OpenedManager manager;
    int status = kSuccess;
    if (!fail(manager, call, 1, status)) break;
    ++result.points;
    ++result.states;
    if (status == kSuccess) {
      if (!same(committed() + 1)) ++result.bad;
      continue;
    }
    EXPECT_EQ(manager.AcquisitionDataOffset(), committed() == 0 ? 0U : 1024U);
    const bool kept = same(committed());
    const int again = manager.CommitAcqDataFrame(path_.c_str(), committed(), DataRAWa);
    // After a failed sync, this manager refuses further commits (see FailedSyncTest.cpp); another
    // one can continue.
    EXPECT_EQ(again, syncFailed_ ? kWriteFailed : kSuccess);
    const bool repeated = syncFailed_ ? goOn() == kSuccess : again == kSuccess;
    if (!kept || !repeated || !same(committed() + 1)) ++result.bad;
  }
  EXPECT_GE(result.points, 8U);
  EXPECT_EQ(result.bad, 0U);
  ReportSweep(result);
}

TEST_P(FailedCommit, ThatCannotBeTakenBackLeavesTheEarlierFramesAndIsRepaired) {
  SweepResult result{.promise = kCommitFails,
                     .sweep = "EIO and ENOSPC at each call and at those that take it back"};
  bool struck = true;
  for (int call = 0; struck; ++call) {
    for (const int count : {2, 3, 4, 5, 6, 7, 8, 1000}) {
      SCOPED_TRACE(std::to_string(count) + " calls from " + std::to_string(call));
      OpenedManager manager;
      int status = kSuccess;
      struck = fail(manager, call, count, status);
      if (!struck) break;
      ++result.points;
      ++result.states;
      const int frames = readableFrames();
      EXPECT_TRUE(frames == committed() || frames == committed() + 1) << frames;
      // If the frame was not committed and no sync failed, the same manager commits it again.
      // Otherwise another manager continues the run.
      const bool tries = frames == committed() && !syncFailed_;
      const bool repeated =
          (tries ? manager.CommitAcqDataFrame(path_.c_str(), committed(), DataRAWa) : goOn()) ==
          kSuccess;
      EXPECT_TRUE(repeated);
      const int now = readableFrames();
      EXPECT_EQ(now, frames + 1);
      if (!repeated || now != frames + 1 || frames < committed() || !same(now)) ++result.bad;
    }
  }
  EXPECT_GE(result.points, 50U);
  EXPECT_EQ(result.bad, 0U);
  ReportSweep(result);
}

INSTANTIATE_TEST_SUITE_P(Frames, FailedCommit,
                         testing::Values(Staged{0, EIO}, Staged{0, ENOSPC}, Staged{1, EIO},
                                         Staged{2, EIO}, Staged{2, ENOSPC}),
                         [](const auto& staged) {
                           return std::string(staged.param.error == EIO ? "EIO" : "ENOSPC") +
                                  "Behind" + std::to_string(staged.param.committed);
                         });

class CommitOverUncommittedBytes : public RunOnDisk {
 protected:
  void SetUp() override { files_.SkipSyncs(); }
  FaultyFileSystem files_;
};

TEST_F(CommitOverUncommittedBytes, WritesOverPartOfAFrame) {
  for (const std::size_t left : {1U, 3U, 4U, 79U, 80U, 239U, 240U}) {
    WriteBytes(path_, Join({documentOf(2), Bytes(left, 'x')}));
    EXPECT_EQ(readableFrames(), 2) << left;
    EXPECT_EQ(goOn(), kSuccess);
    EXPECT_EQ(FirstDifference(ReadBytes(path_), documentOf(3)), "") << left;
  }
}

TEST_F(CommitOverUncommittedBytes, ThatFailsLeavesTheLength) {
  WriteBytes(path_, Join({documentOf(2), Bytes(17, 'x')}));
  for (const FileCall call : {FileCall::write, FileCall::syncData}) {
    files_.FailKind(call, EIO, 0, true);
    EXPECT_EQ(goOn(), kWriteFailed);
    EXPECT_EQ(std::filesystem::file_size(path_), documentOf(2).size() + 17);
    EXPECT_EQ(readableFrames(), 2);
  }
}

TEST_F(CommitOverUncommittedBytes, KeepsMoreThanAFrameAndWholeRecords) {
  const Bytes name = ByteString().Text("NAME").Long(4).Text("name");
  const Bytes frame = StoredFrame(MakeFrame(wells_, 2));
  Bytes block = StoredBlock("RAWa", wells_, 2);
  SetLongAt(block, 4, 18 + 2UL * wells_ + 80UL * wells_ * 3);
  const Bytes unknown = ByteString().Text("OTHR").Long(4).Text("mine");
  for (const Bytes& behind : {name, unknown, Join({unknown, unknown}), Bytes(241, 'x')}) {
    WriteBytes(path_, Join({documentOf(2), behind}));
    EXPECT_EQ(goOn(), kSuccess);
    EXPECT_EQ(FirstDifference(ReadBytes(path_), Join({StoredHeader(1024), block, behind, frame})),
              "");
  }
}

TEST_F(CommitOverUncommittedBytes, OverwritesAnIncompleteFirstBlock) {
  const Bytes block = StoredBlock("RAWa", wells_, 1);
  const Bytes other = ByteString().Text("NAME").Long(4).Text("name");
  const auto write = [&](const Bytes& there) {
    WriteBytes(path_, Join({StoredHeader(), other, there}));
    OpenedManager manager;
    const auto numbers = WellNumbers(wells_);
    manager.InitAcqDataWellNumberArray(numbers.data(), wells_, DataRAWa);
    ASSERT_EQ(append(manager, 0), kSuccess);
    ASSERT_EQ(FirstDifference(ReadBytes(path_), Join({StoredHeader(1036), other, block})), "");
  };
  write(block);
  Bytes untagged = block;
  std::fill_n(untagged.begin(), 4, std::uint8_t{0});
  // The bytes of the frame differ from the frame that is committed now.
  untagged.back() ^= 1;
  for (std::size_t left = 0; left <= untagged.size(); ++left) {
    SCOPED_TRACE(left);
    ASSERT_NO_FATAL_FAILURE(write(Slice(untagged, 0, left)));
  }
}

TEST_F(CommitOverUncommittedBytes, FindsAnIncompleteFirstBlockAfterUnknownRecords) {
  const Bytes other = ByteString().Text("OTHR").Long(4).Text("mine");
  Bytes untagged = StoredBlock("RAWa", wells_, 1);
  std::fill_n(untagged.begin(), 4, std::uint8_t{0});
  WriteBytes(path_, Join({StoredHeader(), other, Slice(untagged, 0, 100)}));
  EXPECT_EQ(goOn(), kSuccess);
  EXPECT_EQ(FirstDifference(ReadBytes(path_),
                            Join({StoredHeader(1036), other, StoredBlock("RAWa", wells_, 1)})),
            "");
}

TEST_F(CommitOverUncommittedBytes, KeepsFramesItCommittedThatNoLengthCounts) {
  OpenedManager manager;
  begin(manager);
  for (int i = 0; i < 3; ++i) {
    const Vex2FrameData frame = MakeFrame(wells_, i);
    for (int well = 0; well < wells_; ++well) {
      ASSERT_TRUE(manager.SetAcqDataWellRecord(&frame.records[well], i, well + 1, DataRAWa));
    }
  }
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(manager.CommitAcqDataFrame(path_.c_str(), i, DataRAWa), kSuccess);
  }
  // The first commit wrote the whole block with all frames; each later commit appended its frame
  // again.
  EXPECT_EQ(
      FirstDifference(ReadBytes(path_), Join({documentOf(3), StoredFrame(MakeFrame(wells_, 1)),
                                              StoredFrame(MakeFrame(wells_, 2))})),
      "");
}

TEST_F(CommitOverUncommittedBytes, AppendedBlocksOverwriteAnIncompleteFirstBlock) {
  Vex2FrameData frames[] = {MakeFrame(wells_, 0)};
  const Vex2AcquisitionData data{frames, 1};
  const Bytes block = StoredBlock("RAWa", wells_, 1);
  Bytes untagged = block;
  std::fill_n(untagged.begin(), 4, std::uint8_t{0});
  for (const Bytes& there : {Bytes{}, block, untagged, Slice(untagged, 0, 100)}) {
    WriteBytes(path_, Join({StoredHeader(), there}));
    OpenedManager manager;
    ASSERT_EQ(manager.AppendAcquisitionDataBlock(path_.c_str(), &data), kSuccess);
    EXPECT_EQ(FirstDifference(ReadBytes(path_), documentOf(1)), "");
  }
}

TEST_F(CommitOverUncommittedBytes, KeepsABlockWithFramesThatItDoesNotHold) {
  const Bytes block = StoredBlock("RAWa", wells_, 2);
  for (const Bytes& there : {block, Slice(block, 0, block.size() - 1)}) {
    WriteBytes(path_, Join({StoredHeader(), there}));
    OpenedManager manager;
    const auto numbers = WellNumbers(wells_);
    manager.InitAcqDataWellNumberArray(numbers.data(), wells_, DataRAWa);
    ASSERT_EQ(append(manager, 5), kSuccess);
    EXPECT_EQ(FirstDifference(Slice(ReadBytes(path_), 1024, there.size()), there), "");
  }
}

}  // namespace
}  // namespace vex2::test
