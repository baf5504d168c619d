// Tests that after a failed sync the manager refuses to change the file again. The system may have
// dropped the data that it could not store, and a second sync would not report that.
#include "tests/reliability/RunOnDisk.h"
#include "tests/support/RecordingHost.h"

namespace vex2::test {
namespace {

constexpr int kFrameCount = 4;

class FailedSync : public RunOnDisk {
 protected:
  // Records a run in which a sync fails after `syncs` successful ones; only that one if `once`,
  // otherwise all later ones, too. Returns the number of frames whose commit returned; all frames
  // if no sync failed.
  int recordUntilFailure(OpenedManager& manager, int syncs, bool once) {
    files_.Restart();
    files_.SkipSyncs();
    begin(manager);
    files_.FailKind(FileCall::syncData, EIO, syncs, once);
    int committed = 0;
    while (committed < kFrameCount && append(manager, committed) == kSuccess) ++committed;
    return committed;
  }
  void failOneCommit(OpenedManager& manager) {
    record(manager, 1);
    files_.FailKind(FileCall::syncData, EIO);
    ASSERT_EQ(append(manager, 1), kWriteFailed);
    files_.Heal(FileCall::syncData);
  }
  int commit(OpenedManager& manager, int index) {
    return manager.CommitAcqDataFrame(path_.c_str(), index, DataRAWa);
  }

  RecordingHost host_;
  FaultyFileSystem files_;
};

TEST_F(FailedSync, AnywhereEndsCommitsToTheFileAndKeepsTheDocument) {
  const std::string copy = folder_ / "copy.vex";
  SweepResult result{.promise = "a sync fails",
                     .sweep = "EIO at each sync of a run, once and from then on"};
  NewFailures failures;
  for (const bool once : {true, false}) {
    for (int syncs = 0; syncs < 2 * kFrameCount; ++syncs) {
      SCOPED_TRACE(std::to_string(syncs) + (once ? " once" : " from then on"));
      host_.messages.clear();
      OpenedManager manager;
      const int committed = recordUntilFailure(manager, syncs, once);
      EXPECT_LT(committed, kFrameCount);
      files_.Restart();
      const Bytes before = ReadBytes(path_);
      const int frames = readableFrames();
      EXPECT_TRUE(frames == committed || frames == committed + 1) << frames;
      for (int tries = 0; tries < 3; ++tries) EXPECT_EQ(commit(manager, committed), kWriteFailed);
      EXPECT_EQ(host_.messages.size(), 1U);
      EXPECT_EQ(FirstDifference(ReadBytes(path_), before), "");

      EXPECT_EQ(manager.SaveToFile(copy.c_str()), kSuccess);
      Vex2FileManager reader;
      EXPECT_EQ(reader.ReadFromFile(copy.c_str()), kSuccess);
      EXPECT_EQ(reader.GetDataFrameCount(DataRAWa), committed + 1);
      ++result.points;
      ++result.states;
      if (failures.Any()) ++result.bad;
    }
  }
  ReportSweep(result);
  EXPECT_EQ(result.bad, 0U);
}

// All files have the same number, as if a new file got the number of a removed one.
class FilesOfOneNumber : public FaultyFileSystem {
 public:
  int Stat(int file, struct stat& info) override {
    return numbered(FaultyFileSystem::Stat(file, info), info);
  }
  int StatPath(const char* path, struct stat& info) override {
    return numbered(FaultyFileSystem::StatPath(path, info), info);
  }

 private:
  static int numbered(int status, struct stat& info) {
    info.st_ino = 1;
    return status;
  }
};

TEST_F(FailedSync, DoesNotAffectANewFileWithTheNumberOfTheOldOne) {
  FilesOfOneNumber files;
  OpenedManager manager;
  record(manager, 1);
  files.FailKind(FileCall::syncData, EIO);
  ASSERT_EQ(append(manager, 1), kWriteFailed);
  files.Heal(FileCall::syncData);
  EXPECT_EQ(manager.SetAcquisitionStatus(path_.c_str(), "DONE"), kWriteFailed);
  std::filesystem::remove(path_);
  ASSERT_EQ(manager.SaveToFile(path_.c_str()), kSuccess);
  EXPECT_EQ(manager.SetAcquisitionStatus(path_.c_str(), "DONE"), kSuccess);
}

TEST_F(FailedSync, RefusesEveryChangeOfTheFile) {
  OpenedManager manager;
  failOneCommit(manager);
  const Bytes before = ReadBytes(path_);
  EXPECT_EQ(manager.SetAcquisitionStatus(path_.c_str(), "DONE"), kWriteFailed);
  EXPECT_EQ(manager.ReplaceAcquisitionDataBlock(path_.c_str(), nullptr, DataREPr), kWriteFailed);
  EXPECT_EQ(manager.AppendGlobalComplexComp(path_.c_str(), nullptr), kWriteFailed);
  EXPECT_EQ(manager.ReplaceBackground(path_.c_str(), nullptr), kWriteFailed);
  EXPECT_EQ(FirstDifference(ReadBytes(path_), before), "");
  EXPECT_FALSE(manager.IsOpen());
}

TEST_F(FailedSync, IsShownToTheUserOnceAndTracedAfterwards) {
  OpenedManager manager;
  failOneCommit(manager);
  EXPECT_EQ(commit(manager, 1), kWriteFailed);
  EXPECT_EQ(commit(manager, 1), kWriteFailed);
  ASSERT_EQ(host_.messages.size(), 1U);
  EXPECT_NE(host_.messages[0].find(path_), std::string::npos);
  EXPECT_EQ(host_.traces, std::vector<std::string>{host_.messages[0] + "\n"});
}

TEST_F(FailedSync, OfAStatusCountsToo) {
  OpenedManager manager;
  record(manager, 1);
  files_.FailKind(FileCall::syncData, EIO);
  EXPECT_EQ(manager.SetAcquisitionStatus(path_.c_str(), "PROG"), kWriteFailed);
  files_.Restart();
  EXPECT_EQ(append(manager, 1), kWriteFailed);
}

TEST_F(FailedSync, FollowsTheFileAndNotItsName) {
  OpenedManager manager;
  failOneCommit(manager);
  const std::string moved = folder_ / "moved.vex";
  std::filesystem::copy_file(path_, folder_ / "copy.vex");
  std::filesystem::rename(path_, moved);
  EXPECT_EQ(manager.CommitAcqDataFrame(moved.c_str(), 1, DataRAWa), kWriteFailed);
  std::filesystem::rename(folder_ / "copy.vex", path_);
  EXPECT_EQ(commit(manager, 1), kSuccess) << "another file in its place";
}

TEST_F(FailedSync, ConcernsNoOtherFileAndNoOtherManager) {
  OpenedManager manager;
  failOneCommit(manager);
  const std::string other = folder_ / "other.vex";
  WriteBytes(other, StoredHeader());
  EXPECT_EQ(manager.CommitAcqDataFrame(other.c_str(), 0, DataRAWa), kSuccess);
  EXPECT_EQ(goOn(), kSuccess) << "another manager does not know";
  OpenedManager copy;
  copy = manager;
  EXPECT_EQ(commit(copy, 1), kSuccess) << "nor does a copy of this one";
}

TEST_F(FailedSync, IsOverWhenAWholeDocumentReplacesTheFile) {
  OpenedManager manager;
  failOneCommit(manager);
  files_.FailKind(FileCall::syncAll, EIO, 0, true);
  EXPECT_EQ(manager.SaveToFile(path_.c_str()), kWriteFailed);
  EXPECT_EQ(commit(manager, 1), kWriteFailed) << "the save failed";
  EXPECT_EQ(manager.SaveHeader(path_.c_str(), Vex2HeaderData()), kSuccess);
  EXPECT_EQ(commit(manager, 1), kSuccess);
  EXPECT_EQ(readableFrames(), 2);
}

TEST_F(FailedSync, IsOverAlsoWhereTheSaveWritesTheFileItself) {
  OpenedManager manager;
  failOneCommit(manager);
  std::filesystem::create_hard_link(path_, folder_ / "link");
  EXPECT_EQ(manager.SaveHeader(path_.c_str(), Vex2HeaderData()), kSuccess);
  EXPECT_EQ(commit(manager, 1), kSuccess);
}

}  // namespace
}  // namespace vex2::test
