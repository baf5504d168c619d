// Tests the reasons that are returned for the last failed operation on a file.
#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <string>

#include "tests/support/FaultyFileSystem.h"
#include "tests/support/RunDocument.h"
#include "tests/support/SilentHost.h"
#include "tests/support/StudyDocument.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

using Doing = vex2::FileOperation;
using Reason = vex2::FileErrorReason;

class LastFileError : public TempFolderTest {
 protected:
  void SetUp() override {
    WriteBytes(path_, StoredHeader());
    const auto numbers = WellNumbers(2);
    manager_.InitAcqDataWellNumberArray(numbers.data(), 2, DataRAWa);
  }
  int append() {
    const Vex2FrameData frame = MakeFrame(2, manager_.GetDataFrameCount(DataRAWa));
    return manager_.AppendAcquisitionDataFrame(path_.c_str(), &frame, DataRAWa);
  }
  int commitLast() {
    return manager_.CommitAcqDataFrame(path_.c_str(), manager_.GetDataFrameCount(DataRAWa) - 1,
                                       DataRAWa);
  }
  void expectNone() { expect(Reason::kNone, Doing::kNone, 0, ""); }
  void expect(Reason reason, Doing operation, int systemError, const std::string& path) {
    const FileError& error = manager_.GetLastFileError();
    EXPECT_EQ(error.reason, reason);
    EXPECT_EQ(error.operation, operation);
    EXPECT_EQ(error.systemError, systemError);
    EXPECT_EQ(error.path, CString(path));
  }
  std::uint64_t offset() const { return manager_.GetLastFileError().offset; }

  SilentHost host_;
  OpenedManager manager_;
  const std::string path_ = folder_ / "run.vex";
};

TEST_F(LastFileError, IsNoneInTheBeginningAndAfterSuccess) {
  expectNone();
  EXPECT_EQ(append(), kSuccess);
  expectNone();
  EXPECT_EQ(manager_.ReadFromFile(path_.c_str()), kSuccess);
  expectNone();
  EXPECT_EQ(manager_.SaveToFile(path_.c_str()), kSuccess);
  expectNone();
}

TEST_F(LastFileError, ReportsAMissingFile) {
  const std::string missing = folder_ / "none.vex";
  EXPECT_EQ(manager_.ReadFromFile(missing.c_str()), kReadFailed);
  expect(Reason::kSystem, Doing::kOpen, ENOENT, missing);
}

TEST_F(LastFileError, ReportsARefusedLockWithoutASystemError) {
  CFile other;
  ASSERT_TRUE(other.Open(path_.c_str(), CFile::modeReadWrite));
  EXPECT_EQ(manager_.ReadFromFile(path_.c_str()), kReadFailed);
  expect(Reason::kLocked, Doing::kLock, 0, path_);
}

TEST_F(LastFileError, ReportsALockThatTheSystemCannotGrant) {
  FaultyFileSystem files;
  files.FailKind(FileCall::lock, EIO);
  EXPECT_EQ(manager_.ReadFromFile(path_.c_str()), kReadFailed);
  expect(Reason::kSystem, Doing::kLock, EIO, path_);
}

TEST_F(LastFileError, ReportsAFileThatIsNoDocument) {
  EXPECT_EQ(append(), kSuccess);
  WriteBytes(path_, Bytes(2000, 'x'));
  const std::function<int()> operations[] = {
      [&] { return append(); },
      [&] { return manager_.ReadDataFrame(path_.c_str(), 0, nullptr, DataRAWa); },
      [&] { return manager_.ReplaceAcquisitionDataBlock(path_.c_str(), nullptr, DataREPr); },
      [&] { return manager_.SetAcquisitionStatus(path_.c_str(), "DONE"); },
  };
  for (const auto& operation : operations) {
    EXPECT_LT(operation(), kSuccess);
    expect(Reason::kNotADocument, Doing::kRead, 0, path_);
  }
  EXPECT_EQ(manager_.ReadFromFile(path_.c_str()), kSuccess);
  expect(Reason::kNotADocument, Doing::kRead, 0, path_);
}

TEST_F(LastFileError, ReportsARefusedRead) {
  EXPECT_EQ(append(), kSuccess);
  FaultyFileSystem files;
  files.FailKind(FileCall::read, EIO);
  EXPECT_EQ(manager_.ReadDataFrame(path_.c_str(), 0, nullptr, DataRAWa), kReadFailed);
  expect(Reason::kSystem, Doing::kRead, EIO, path_);
  EXPECT_EQ(manager_.ReadFromFile(path_.c_str()), kSuccess);
  EXPECT_FALSE(manager_.IsWhole());
  expect(Reason::kSystem, Doing::kRead, EIO, path_);
}

TEST_F(LastFileError, ReportsAFullDiskAndWhere) {
  EXPECT_EQ(append(), kSuccess);
  const std::uint64_t end = ReadBytes(path_).size();
  FaultyFileSystem files;
  files.FailKind(FileCall::write, ENOSPC);
  EXPECT_EQ(append(), kWriteFailed);
  expect(Reason::kSystem, Doing::kWrite, ENOSPC, path_);
  EXPECT_EQ(offset(), end);
}

TEST_F(LastFileError, IsTheFirstOfAnOperation) {
  EXPECT_EQ(append(), kSuccess);
  FaultyFileSystem files;
  files.FailKind(FileCall::write, ENOSPC);
  files.FailKind(FileCall::truncate, EIO);
  EXPECT_EQ(append(), kWriteFailed);
  ASSERT_TRUE(files.WasRefused(FileCall::truncate));
  expect(Reason::kSystem, Doing::kWrite, ENOSPC, path_);
}

TEST_F(LastFileError, ReportsAFailedSyncAndRefusesFurtherWrites) {
  EXPECT_EQ(append(), kSuccess);
  FaultyFileSystem files;
  files.FailKind(FileCall::syncData, EIO);
  EXPECT_EQ(append(), kWriteFailed);
  expect(Reason::kSystem, Doing::kSync, EIO, path_);
  files.Heal(FileCall::syncData);
  EXPECT_EQ(commitLast(), kWriteFailed);
  expect(Reason::kFailedSyncBefore, Doing::kSync, 0, path_);
}

TEST_F(LastFileError, ReportsARefusedRename) {
  FaultyFileSystem files;
  files.FailKind(FileCall::rename, EIO);
  EXPECT_EQ(manager_.SaveToFile(path_.c_str()), kWriteFailed);
  expect(Reason::kSystem, Doing::kRename, EIO, path_);
}

TEST_F(LastFileError, ReportsARefusedBackup) {
  WriteBytes(path_, Join({StoredHeader(), Bytes(6, 'x')}));
  EXPECT_EQ(manager_.ReadFromFile(path_.c_str()), kSuccess);
  ASSERT_FALSE(manager_.IsWhole());
  FaultyFileSystem files;
  files.FailKind(FileCall::createNew, ENOSPC);
  EXPECT_EQ(manager_.SaveToFile(path_.c_str()), kWriteFailed);
  expect(Reason::kSystem, Doing::kCreate, ENOSPC, path_ + ".backup");
}

TEST_F(LastFileError, ReportsAReadOnlyFile) {
  EXPECT_EQ(append(), kSuccess);
  FaultyFileSystem files;
  files.RefuseWriters(EROFS);
  EXPECT_EQ(append(), kWriteFailed);
  expect(Reason::kSystem, Doing::kOpen, EROFS, path_);
}

TEST_F(LastFileError, ReportsThatMemoryRanOut) {
  FaultyFileSystem files;
  files.FailKind(FileCall::read, FaultyFileSystem::kNoMemory);
  EXPECT_EQ(append(), kReadFailed);
  expect(Reason::kNoMemory, Doing::kNone, 0, "");
}

TEST_F(LastFileError, ReportsAMissingPathAndAFileThatIsNotOpen) {
  EXPECT_EQ(manager_.SafeOpen(nullptr, 0, 0), 0);
  expect(Reason::kNoPath, Doing::kOpen, 0, "");
  EXPECT_EQ(manager_.SaveHeader(nullptr, manager_.GetHeaderData()), kWriteFailed);
  EXPECT_EQ(manager_.GetLastFileError().reason, Reason::kNoPath);
  EXPECT_EQ(manager_.ReadComponentFile(nullptr), kReadFailed);
  EXPECT_EQ(manager_.GetLastFileError().reason, Reason::kNotOpen);
  EXPECT_EQ(manager_.WriteComponentFile(nullptr), kWriteFailed);
  EXPECT_EQ(manager_.GetLastFileError().reason, Reason::kNotOpen);
  EXPECT_EQ(manager_.UpdateAcqDataOffset(1), kWriteFailed);
  EXPECT_EQ(manager_.GetLastFileError().reason, Reason::kNotOpen);
}

TEST_F(LastFileError, StaysDuringOperationsInMemory) {
  const std::string missing = folder_ / "none.vex";
  EXPECT_EQ(manager_.ReadFromFile(missing.c_str()), kReadFailed);
  EXPECT_EQ(manager_.SetCalibrator("one"), kSuccess);
  EXPECT_EQ(manager_.Reset(), kSuccess);
  expect(Reason::kSystem, Doing::kOpen, ENOENT, missing);
  EXPECT_EQ(manager_.SaveToFile(path_.c_str()), kSuccess);
  expectNone();
}

TEST_F(LastFileError, IsNotCopied) {
  const std::string missing = folder_ / "none.vex";
  EXPECT_EQ(manager_.ReadFromFile(missing.c_str()), kReadFailed);
  const Vex2FileManager copy = manager_;
  EXPECT_EQ(copy.GetLastFileError().reason, Reason::kNone);
  EXPECT_EQ(copy.GetFilePath(), CString(missing));
}

TEST_F(LastFileError, OfAStudyReportsARefusedReadInAPlate) {
  Vex2FileManager study;
  SetAssay(study, "RQSt");
  Vex2FileManager plate = PlateAt("/runs/one.vex");
  // More bytes than the first read of the file returns.
  const Bytes comment(100'000, 'x');
  Vex2GlobalComplex settings;
  settings.SetComment(comment.data(), static_cast<std::uint32_t>(comment.size()));
  ASSERT_EQ(plate.ReplaceGlobalComplexComp(&settings), kSuccess);
  ASSERT_TRUE(study.AddRQPlate(&plate, "today"));
  ASSERT_EQ(study.SaveToFile(path_.c_str()), kSuccess);
  FaultyFileSystem files;
  files.FailKind(FileCall::read, EIO, 1);
  EXPECT_EQ(manager_.ReadFromFile(path_.c_str()), kSuccess);
  EXPECT_FALSE(manager_.IsWhole());
  expect(Reason::kSystem, Doing::kRead, EIO, path_);
  EXPECT_GT(offset(), 1024U);
}

}  // namespace
}  // namespace vex2::test
