// Tests what is left of a document after a system call failed, and the order in which bytes reach
// the disk.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "tests/support/FaultyFileSystem.h"
#include "tests/support/RunDocument.h"
#include "tests/support/SilentHost.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

constexpr std::uint16_t kWells = 3;

class Durability : public TempFolderTest {
 protected:
  // Records a run of `frames` committed frames to `path_` with `manager`.
  void record(OpenedManager& manager, int frames) {
    WriteBytes(path_, StoredHeader());
    const auto numbers = WellNumbers(kWells);
    manager.InitAcqDataWellNumberArray(numbers.data(), kWells, DataRAWa);
    for (int i = 0; i < frames; ++i) ASSERT_EQ(append(manager, i), kSuccess);
  }
  int append(OpenedManager& manager, int index) {
    const Vex2FrameData frame = MakeFrame(kWells, index);
    return manager.AppendAcquisitionDataFrame(path_.c_str(), &frame, DataRAWa);
  }
  static Bytes documentOf(int frames) {
    return Join({StoredHeader(1024), StoredBlock("RAWa", kWells, frames)});
  }
  // Checks that the file holds these frames, read as a whole and one by one.
  void expectFrames(int frames) {
    Vex2FileManager reader;
    ASSERT_EQ(reader.ReadFromFile(path_.c_str()), kSuccess);
    ASSERT_GE(reader.GetDataFrameCount(DataRAWa), frames);
    for (int i = 0; i < frames; ++i) {
      Vex2FrameData frame;
      ASSERT_EQ(reader.ReadDataFrame(i, &frame, DataRAWa), kSuccess);
      EXPECT_TRUE(SameFrame(frame, MakeFrame(kWells, i))) << i;
      ASSERT_EQ(reader.ReadDataFrame(path_.c_str(), i, &frame, DataRAWa), kSuccess);
      EXPECT_TRUE(SameFrame(frame, MakeFrame(kWells, i))) << i;
    }
  }
  std::vector<std::string> namesInFolder() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
      names.push_back(entry.path().filename());
    }
    return names;
  }

  SilentHost host_;
  std::string path_ = folder_ / "run.vex";
};

TEST_F(Durability, ShortAndInterruptedTransfersAreCarriedThrough) {
  FaultyFileSystem files;
  files.Shorten(7, true);
  OpenedManager manager;
  record(manager, 3);
  EXPECT_EQ(FirstDifference(ReadBytes(path_), documentOf(3)), "");
  expectFrames(3);
  EXPECT_EQ(manager.SaveToFile((folder_ / "copy.vex").c_str()), kSuccess);
  const auto end = static_cast<std::uint32_t>(documentOf(3).size());
  EXPECT_EQ(FirstDifference(ReadBytes(folder_ / "copy.vex"),
                            Join({StoredHeader(end), StoredBlock("RAWa", kWells, 3)})),
            "");
}

// Returns the calls that change a file or order such changes, as words.
std::string changesIn(const std::vector<FileOperation>& log, const std::string& path) {
  std::string changes;
  for (const FileOperation& operation : log) {
    const std::string who = operation.path == path ? "" : "other ";
    if (operation.call == FileCall::write) {
      changes += who + "write@" + std::to_string(operation.offset) + "+" +
                 std::to_string(operation.count) + " ";
    }
    if (operation.call == FileCall::truncate) changes += who + "truncate ";
    if (operation.call == FileCall::syncData) changes += who + "barrier ";
  }
  return changes;
}

TEST_F(Durability, PartialWriteToAFullDiskIsCutOff) {
  OpenedManager manager;
  record(manager, 1);
  const auto expectCutOff = [&](const auto& operation) {
    const Bytes before = ReadBytes(path_);
    FaultyFileSystem files;
    files.Shorten(100, false);
    files.FailKind(FileCall::write, ENOSPC, 1);
    EXPECT_EQ(operation(), kWriteFailed);
    EXPECT_EQ(FirstDifference(ReadBytes(path_), before), "");
  };
  expectCutOff([&] { return append(manager, 1); });
  Vex2BGC background;
  background.SetEntryCount(50);
  expectCutOff([&] { return manager.AppendBackground(path_.c_str(), &background); });
}

TEST_F(Durability, CommitSyncsTheFrameBeforeTheLength) {
  OpenedManager manager;
  record(manager, 1);
  FaultyFileSystem files;
  EXPECT_EQ(append(manager, 1), kSuccess);
  const auto end = std::to_string(documentOf(1).size());
  EXPECT_EQ(changesIn(files.Log(), path_),
            "write@" + end + "+" + std::to_string(80 * kWells) + " barrier write@1028+4 barrier ");
}

TEST_F(Durability, CommitSyncsTheBlockBeforeItsTagAndOffset) {
  OpenedManager manager;
  record(manager, 0);
  FaultyFileSystem files;
  EXPECT_EQ(append(manager, 0), kSuccess);
  const auto size = std::to_string(StoredBlock("RAWa", kWells, 1).size());
  EXPECT_EQ(changesIn(files.Log(), path_),
            "write@1024+" + size + " barrier write@1024+4 barrier write@68+4 barrier ");
}

TEST_F(Durability, BlockReplacedInPlaceIsOnTheDiskOnReturn) {
  OpenedManager manager;
  record(manager, 1);
  // A document with a second hard link is not replaced by a new file.
  std::filesystem::create_hard_link(path_, folder_ / "link.vex");
  Vex2FrameData frame = MakeFrame(kWells, 1);
  const Vex2AcquisitionData data{&frame, 1};
  const auto replace = [&](Vex2DataType type) {
    FaultyFileSystem files;
    EXPECT_EQ(manager.ReplaceAcquisitionDataBlock(path_.c_str(), &data, type), kSuccess);
    return changesIn(files.Log(), path_);
  };
  EXPECT_THAT(replace(DataRAWa), testing::EndsWith("barrier "));
  replace(DataREPr);
  EXPECT_THAT(replace(DataREPr), testing::EndsWith("barrier "));
}

// Returns the writes, syncs and renames of a save in order, one word each. Consecutive writes are
// one word.
std::string saveSteps(const std::vector<FileOperation>& log, const std::string& folder) {
  std::string steps;
  for (const FileOperation& operation : log) {
    std::string step;
    if (operation.call == FileCall::write) step = "write ";
    if (operation.call == FileCall::syncAll) {
      step = std::filesystem::is_directory(operation.path) ? "sync folder " : "sync ";
    }
    if (operation.call == FileCall::rename) step = "rename ";
    if (step.empty() || (step == "write " && steps.ends_with(step))) continue;
    EXPECT_EQ(operation.path.find(folder), 0U);
    steps += step;
  }
  return steps;
}

TEST_F(Durability, SaveSyncsTheNewDocumentRenamesItAndSyncsTheFolder) {
  OpenedManager manager;
  manager.SetSampleVolume(1);
  for (int round = 0; round < 2; ++round) {  // first without an old document, then over one
    FaultyFileSystem files;
    EXPECT_EQ(manager.SaveToFile(path_.c_str()), kSuccess);
    EXPECT_EQ(saveSteps(files.Log(), folder_.Path().string()), "write sync rename sync folder ");
  }
}

class FailedSave : public Durability, public testing::WithParamInterface<int> {};

TEST_P(FailedSave, AtAnyCallLeavesTheOldDocumentOrTheNewAndCanBeRepeated) {
  OpenedManager manager;
  record(manager, 2);
  manager.SetSampleVolume(1);
  ASSERT_EQ(manager.SaveToFile(path_.c_str()), kSuccess);
  const Bytes whole = ReadBytes(path_);
  const Bytes old = documentOf(5);
  FaultyFileSystem files;
  int refused = 0;
  for (int call = 0;; ++call) {
    WriteBytes(path_, old);
    files.Restart();
    files.FailCall(call, GetParam());
    const int status = manager.SaveToFile(path_.c_str());
    const bool failed = files.HasFailed();
    files.Restart();
    const Bytes after = ReadBytes(path_);
    EXPECT_EQ(namesInFolder(), std::vector<std::string>{"run.vex"}) << call;
    if (status == kSuccess) {
      ASSERT_EQ(FirstDifference(after, whole), "") << call;
      if (!failed) break;
      continue;
    }
    ++refused;
    EXPECT_EQ(status, kWriteFailed);
    ASSERT_TRUE(after == old || after == whole) << "call " << call;
    ASSERT_EQ(manager.SaveToFile(path_.c_str()), kSuccess) << call;
    ASSERT_EQ(FirstDifference(ReadBytes(path_), whole), "") << call;
  }
  EXPECT_GE(refused, 6);
}

INSTANTIATE_TEST_SUITE_P(Errors, FailedSave, testing::Values(EIO, ENOSPC));

}  // namespace
}  // namespace vex2::test
