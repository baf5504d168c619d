// Tests that a save that is killed or fails at any system call leaves the complete old document or
// the complete new one.
#include <algorithm>

#include "tests/reliability/ForkedProcess.h"
#include "tests/reliability/RunOnDisk.h"
#include "tests/reliability/Works.h"

namespace vex2::test {
namespace {

using Moment = FaultyFileSystem::Moment;

constexpr const char* kSaveInterrupted = "a save is interrupted";

class InterruptedSave : public RunOnDisk, public testing::WithParamInterface<Work> {
 protected:
  void SetUp() override {
    files_.SkipSyncs();
    makeOldDocument();
    FillDocument(manager_);
    // Save twice, because the first save also changes the offsets in the header in memory.
    for (int i = 0; i < 2; ++i) {
      WriteBytes(path_, old_);
      files_.Restart();
      files_.SkipSyncs();
      ASSERT_EQ(save(), kSuccess);
    }
    whole_ = ReadBytes(path_);
    ASSERT_TRUE(whole_ != old_);
    for (const FileOperation& call : files_.Log()) {
      if (call.call != FileCall::close) calls_.push_back(call);
    }
  }
  // Makes the old document: a run, and records that operations replace in place.
  void makeOldDocument() {
    OpenedManager writer;
    FillDocument(writer);
    ASSERT_EQ(writer.SaveToFile(path_.c_str()), kSuccess);
    const SomeBackground background;
    ASSERT_EQ(writer.AppendBackground(path_.c_str(), &background), kSuccess);
    for (int i = 0; i < 3; ++i) ASSERT_EQ(append(writer, i), kSuccess);
    ASSERT_EQ(ReplaceBlock(writer, path_.c_str(), DataREPr), kSuccess);
    ASSERT_EQ(ReplaceBlock(writer, path_.c_str(), DataREPd), kSuccess);
    old_ = ReadBytes(path_);
  }
  int save() { return GetParam().run(manager_, path_.c_str()); }
  void startOver() {
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
      std::filesystem::remove(entry);
    }
    WriteBytes(path_, old_);
    files_.Restart();
    files_.SkipSyncs();
  }
  bool isOldOrWhole() {
    const Bytes after = ReadBytes(path_);
    EXPECT_TRUE(after == old_ || after == whole_) << after.size() << " bytes";
    return after == old_ || after == whole_;
  }

  FaultyFileSystem files_;
  Vex2FileManager manager_;
  Bytes old_;
  Bytes whole_;
  std::vector<FileOperation> calls_;
};

TEST_P(InterruptedSave, ByAKillLeavesTheOldDocumentOrTheNew) {
  SweepResult result{.promise = kSaveInterrupted,
                     .sweep = "SIGKILL before, within and after each system call"};
  ASSERT_GE(calls_.size(), 8U);
  const int step = InFullSweeps(1, 3);
  int visited = 0;
  for (int call = 0; call < static_cast<int>(calls_.size()); ++call) {
    for (const Moment moment : {Moment::before, Moment::halfway, Moment::after}) {
      const bool writes = calls_[static_cast<std::size_t>(call)].call == FileCall::write;
      if (moment == Moment::halfway && !writes) continue;
      // A sample leaves out other calls, but never a write.
      if (!writes && visited++ % step != 0) continue;
      SCOPED_TRACE("call " + std::to_string(call));
      startOver();
      EXPECT_TRUE(IsKilled([&] {
        files_.KillAt(call, moment);
        return save();
      }));
      ++result.points;
      ++result.states;
      if (!isOldOrWhole()) ++result.bad;
    }
  }
  startOver();
  EXPECT_EQ(save(), kSuccess);
  ReportSweep(result);
  EXPECT_EQ(result.bad, 0U);
}

TEST_P(InterruptedSave, ByARefusedCallLeavesTheOldDocumentOrTheNewAndCanBeRepeated) {
  SweepResult result{.promise = kSaveInterrupted,
                     .sweep = "EIO and ENOSPC at each system call, once and from then on"};
  int refused = 0;
  for (const int error : {EIO, ENOSPC}) {
    for (const bool fromThenOn : {false, true}) {
      for (int call = 0; call < static_cast<int>(calls_.size()); ++call) {
        SCOPED_TRACE("call " + std::to_string(call));
        startOver();
        files_.FailCall(call, error, fromThenOn);
        const int status = save();
        files_.Restart();
        files_.SkipSyncs();
        EXPECT_FALSE(manager_.IsOpen());
        ++result.points;
        ++result.states;
        bool good = isOldOrWhole() && (status != kSuccess || ReadBytes(path_) == whole_);
        EXPECT_TRUE(status == kSuccess || status == kWriteFailed || status == kReadFailed)
            << status;
        if (status != kSuccess) {
          ++refused;
          good = good && save() == kSuccess && ReadBytes(path_) == whole_;
        }
        EXPECT_TRUE(good);
        if (!good) ++result.bad;
      }
    }
  }
  EXPECT_GE(refused, 20);
  ReportSweep(result);
  EXPECT_EQ(result.bad, 0U);
}

INSTANTIATE_TEST_SUITE_P(Writers, InterruptedSave, testing::ValuesIn(WholeWriters()),
                         [](const auto& writer) {
                           std::string name = writer.param.name;
                           std::replace(name.begin(), name.end(), ' ', '_');
                           return name;
                         });

}  // namespace
}  // namespace vex2::test
