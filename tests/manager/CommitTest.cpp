// Tests commits of frames to a file during a run, and reading single frames back from the file.
#include <gtest/gtest.h>

#include <climits>
#include <filesystem>

#include "tests/support/FaultyFileSystem.h"
#include "tests/support/RecordingHost.h"
#include "tests/support/RunDocument.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

class Commit : public TempFolderTest {
 protected:
  void newRun(std::uint16_t wells) {
    WriteBytes(path_, StoredHeader());
    const auto numbers = WellNumbers(wells);
    manager_.InitAcqDataWellNumberArray(numbers.data(), wells, DataRAWa);
  }
  int append(const Vex2FrameData& frame) {
    return manager_.AppendAcquisitionDataFrame(path_.c_str(), &frame, DataRAWa);
  }
  int commit(int index) { return manager_.CommitAcqDataFrame(path_.c_str(), index, DataRAWa); }
  // Starts a new run of `wells` wells and commits `frames` frames.
  void run(std::uint16_t wells, int frames) {
    newRun(wells);
    for (int i = 0; i < frames; ++i) ASSERT_EQ(append(MakeFrame(wells, i)), kSuccess);
  }
  int readFrame(int index, Vex2FrameData* frame, Vex2DataType type = DataRAWa) {
    return manager_.ReadDataFrame(path_.c_str(), index, frame, type);
  }
  int count(int& frames, Vex2DataType type = DataRAWa) {
    return manager_.GetDataFrameCount(path_.c_str(), frames, type);
  }
  Bytes file() { return ReadBytes(path_); }

  SilentHost host_;
  OpenedManager manager_;
  std::string path_ = folder_ / "run.vex";
};

using CommitAcqDataFrame = Commit;
using ReadFromAFile = Commit;

TEST_F(CommitAcqDataFrame, First96WellFrameWritesTheBlockAndTheSecondAppends7680Bytes) {
  run(96, 1);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(1024), StoredBlock("RAWa", 96, 1)})), "");
  EXPECT_EQ(LongAt(file(), 1028), 7890U);
  EXPECT_EQ(append(MakeFrame(96, 1)), kSuccess);
  EXPECT_EQ(file().size(), 1024U + 8 + 7890 + 7680);
  EXPECT_EQ(LongAt(file(), 1028), 15570U);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(1024), StoredBlock("RAWa", 96, 2)})), "");
  EXPECT_FALSE(manager_.IsOpen());
}

TEST_F(CommitAcqDataFrame, EmptyBlockIsWrittenByItsFirstCommitWhateverTheIndex) {
  newRun(3);
  EXPECT_EQ(commit(7), kSuccess);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(1024), StoredBlock("RAWa", 3, 0)})), "");
  EXPECT_EQ(manager_.AcquisitionDataOffset(), 1024U);
  EXPECT_EQ(append(MakeFrame(3, 0)), kSuccess);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(1024), StoredBlock("RAWa", 3, 1)})), "");
}

TEST_F(CommitAcqDataFrame, AppendingWithoutABlockMakesOneFromTheFrame) {
  WriteBytes(path_, StoredHeader());
  EXPECT_EQ(append(MakeFrame(2, 0)), kSuccess);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(1024), StoredBlock("RAWa", 2, 1)})), "");
}

TEST_F(CommitAcqDataFrame, FirstOneKeepsRecordsThatHoldMoreThanTheyDeclare) {
  // The count of a list takes two bytes, although its length field says 1.
  const Bytes list = ByteString().Text("SPEC").Long(1).Short(0);
  WriteBytes(path_, Join({StoredHeader(), list}));
  ASSERT_EQ(manager_.ReadFromFile(path_.c_str()), kSuccess);
  ASSERT_EQ(append(MakeFrame(3, 0)), kSuccess);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(1034), list, StoredBlock("RAWa", 3, 1)})),
            "");
}

TEST_F(CommitAcqDataFrame, FrameOfWellRecordsIsCommittedWhole) {
  run(2, 0);
  ASSERT_EQ(commit(0), kSuccess);
  for (int position = 0; position < 2; ++position) {
    const Vex2WellRecord record = MakeRecord(0, position);
    ASSERT_TRUE(manager_.SetAcqDataWellRecord(&record, 0, position + 1, DataRAWa));
  }
  EXPECT_EQ(commit(0), kSuccess);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(1024), StoredBlock("RAWa", 2, 1)})), "");
}

TEST_F(CommitAcqDataFrame, IsADocumentAfterEveryFrame) {
  newRun(5);
  for (int i = 0; i < 45; ++i) {
    ASSERT_EQ(append(MakeFrame(5, i)), kSuccess);
    Vex2FileManager reader;
    ASSERT_EQ(reader.SafeOpen(path_.c_str(), 0, 0), 1);
    ASSERT_EQ(reader.ReadComponentFile(nullptr), kSuccess);
    reader.Close();
    ASSERT_EQ(reader.GetDataFrameCount(DataRAWa), i + 1);
    Vex2FrameData frame;
    ASSERT_EQ(reader.ReadDataFrame(i, &frame, DataRAWa), kSuccess);
    ASSERT_TRUE(SameFrame(frame, MakeFrame(5, i)));
  }
}

TEST_F(CommitAcqDataFrame, CommitOfAReportingBlockLeavesTheFileUnchanged) {
  run(2, 1);
  const Bytes before = file();
  const Vex2FrameData frame = MakeFrame(2, 0);
  EXPECT_EQ(manager_.AppendAcquisitionDataFrame(path_.c_str(), &frame, DataREPr), kSuccess);
  EXPECT_EQ(manager_.CommitAcqDataFrame(path_.c_str(), 0, DataREPr), kSuccess);
  EXPECT_EQ(manager_.CommitAcqDataFrame(nullptr, -1, DataREPr), kSuccess);
  EXPECT_EQ(file(), before);
}

TEST_F(CommitAcqDataFrame, WithoutABlockIsNotFound) {
  WriteBytes(path_, StoredHeader());
  EXPECT_EQ(commit(0), kNotFound);
  EXPECT_EQ(manager_.CommitAcqDataFrame(path_.c_str(), 0, DataREPr), kNotFound);
  EXPECT_EQ(file(), StoredHeader());
}

TEST_F(CommitAcqDataFrame, WithoutADocumentIsAFailedRead) {
  newRun(2);
  EXPECT_EQ(manager_.CommitAcqDataFrame(nullptr, 0, DataRAWa), kReadFailed);
  EXPECT_EQ(manager_.CommitAcqDataFrame((folder_ / "none").c_str(), 0, DataRAWa), kReadFailed);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "none"));
  WriteBytes(path_, Bytes(2000, 'x'));
  EXPECT_EQ(commit(0), kReadFailed);
  EXPECT_EQ(file(), Bytes(2000, 'x'));
  EXPECT_FALSE(manager_.IsOpen());
}

TEST_F(CommitAcqDataFrame, FileTooShortForTheOffsetIsAFailedRead) {
  newRun(2);
  WriteBytes(path_, Slice(StoredHeader(), 0, 70));
  EXPECT_EQ(commit(0), kReadFailed);
  EXPECT_EQ(file(), Slice(StoredHeader(), 0, 70));
  EXPECT_FALSE(manager_.IsOpen());
}

TEST_F(CommitAcqDataFrame, FileThatStaysShorterThanAHeaderIsAFailedWriteAndStays) {
  newRun(2);
  WriteBytes(path_, Slice(StoredHeader(), 0, 900));
  EXPECT_EQ(commit(0), kWriteFailed);
  EXPECT_EQ(FirstDifference(file(), Slice(StoredHeader(), 0, 900)), "");
}

TEST_F(CommitAcqDataFrame, ReadOnlyFileIsAFailedWrite) {
  run(2, 1);
  const Bytes before = file();
  FaultyFileSystem files;
  files.RefuseWriters(EACCES);
  EXPECT_EQ(append(MakeFrame(2, 1)), kWriteFailed);
  EXPECT_FALSE(manager_.IsOpen());
  EXPECT_EQ(file(), before);
}

TEST_F(CommitAcqDataFrame, FailedReadIsReportedBeforeARefusedWrite) {
  newRun(2);
  WriteBytes(path_, Slice(StoredHeader(), 0, 70));
  FaultyFileSystem files;
  files.RefuseWriters(EACCES);
  EXPECT_EQ(commit(0), kReadFailed);
  EXPECT_FALSE(manager_.IsOpen());
}

TEST_F(CommitAcqDataFrame, MissingFrameIsRefusedAndLeavesTheFile) {
  run(2, 2);
  const Bytes before = file();
  for (const int index : {-1, 2, INT_MAX, INT_MIN}) {
    EXPECT_EQ(commit(index), kNoSuchFrame) << index;
  }
  EXPECT_EQ(file(), before);
  EXPECT_FALSE(manager_.IsOpen());
}

TEST_F(CommitAcqDataFrame, BlockOffsetPast32BitsIsRefusedAndLeavesTheLength) {
  newRun(2);
  const std::uint64_t length = std::uint64_t{1} << 32U;
  std::filesystem::resize_file(path_, length);
  EXPECT_EQ(append(MakeFrame(2, 0)), kWriteFailed);
  EXPECT_EQ(std::filesystem::file_size(path_), length);
  EXPECT_EQ(manager_.AcquisitionDataOffset(), 0U);
}

TEST_F(CommitAcqDataFrame, CarriesOnInAFileThatWasReplacedByACopy) {
  run(2, 1);
  std::filesystem::copy_file(path_, folder_ / "copy");
  std::filesystem::rename(folder_ / "copy", path_);
  EXPECT_EQ(append(MakeFrame(2, 1)), kSuccess);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(1024), StoredBlock("RAWa", 2, 2)})), "");
}

TEST_F(CommitAcqDataFrame, ToAFileThatReplacedTheOldWritesTheWholeBlock) {
  run(2, 1);
  WriteBytes(path_, StoredHeader());
  EXPECT_EQ(append(MakeFrame(2, 1)), kSuccess);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(1024), StoredBlock("RAWa", 2, 2)})), "");
}

TEST_F(CommitAcqDataFrame, WellCounts0And65535AreAccepted) {
  newRun(0);
  EXPECT_EQ(append(Vex2FrameData()), kSuccess);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(1024), StoredBlock("RAWa", 0, 0)})), "");
  EXPECT_EQ(append(Vex2FrameData()), kNoSuchFrame);
  manager_.Reset();
  run(65535, 2);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(1024), StoredBlock("RAWa", 65535, 2)})), "");
}

TEST_F(ReadFromAFile, FramesAndTheirCountWithoutTouchingTheDocument) {
  run(3, 4);
  OpenedManager reader;
  int frames = -1;
  EXPECT_EQ(reader.GetDataFrameCount(path_.c_str(), frames, DataRAWa), kSuccess);
  EXPECT_EQ(frames, 4);
  for (int i = 0; i < 4; ++i) {
    Vex2FrameData frame = MakeFrame(1, 9);
    EXPECT_EQ(reader.ReadDataFrame(path_.c_str(), i, &frame, DataRAWa), kSuccess);
    EXPECT_TRUE(SameFrame(frame, MakeFrame(3, i))) << i;
  }
  EXPECT_EQ(reader.ReadDataFrame(path_.c_str(), 0, nullptr, DataRAWa), kSuccess);
  EXPECT_EQ(reader.GetAllComponentCount(), 0);
  EXPECT_EQ(reader.AcquisitionDataOffset(), 0U);
  EXPECT_FALSE(reader.IsOpen());
}

TEST_F(ReadFromAFile, IndexOutOfRangeIsNoErrorAndLeavesTheFrame) {
  run(3, 2);
  for (const int index : {2, -1, INT_MAX, INT_MIN}) {
    Vex2FrameData frame = MakeFrame(1, 9);
    EXPECT_EQ(readFrame(index, &frame), kSuccess) << index;
    EXPECT_TRUE(SameFrame(frame, MakeFrame(1, 9))) << index;
  }
  ASSERT_EQ(manager_.SafeOpen(path_.c_str(), 0, 0), 1);
  Vex2FrameData frame = MakeFrame(1, 9);
  EXPECT_EQ(manager_.readAFrame(2, &frame, 1024), kSuccess);
  EXPECT_TRUE(SameFrame(frame, MakeFrame(1, 9)));
  EXPECT_EQ(manager_.readAFrame(0, &frame, 0), kSuccess);
  EXPECT_TRUE(SameFrame(frame, MakeFrame(1, 9)));
}

TEST_F(ReadFromAFile, ReportingBlocksAreFoundByWalking) {
  WriteBytes(path_, Join({StoredHeader(), StoredBlock("REPr", 1, 1), StoredBlock("REPd", 2, 3)}));
  int frames = -1;
  EXPECT_EQ(count(frames, DataREPd), kSuccess);
  EXPECT_EQ(frames, 3);
  Vex2FrameData frame;
  EXPECT_EQ(readFrame(2, &frame, DataREPd), kSuccess);
  EXPECT_TRUE(SameFrame(frame, MakeFrame(2, 2)));
  EXPECT_EQ(count(frames, DataREPt), kSuccess);
  EXPECT_EQ(frames, 0);
  EXPECT_EQ(readFrame(0, &frame, DataREPt), kSuccess);
  EXPECT_TRUE(SameFrame(frame, MakeFrame(2, 2)));
}

TEST_F(ReadFromAFile, WithoutADocumentIsAFailedReadAndNoFrames) {
  int frames = 5;
  Vex2FrameData frame;
  EXPECT_EQ(manager_.GetDataFrameCount(nullptr, frames, DataRAWa), kReadFailed);
  EXPECT_EQ(frames, 0);
  frames = 5;
  EXPECT_EQ(count(frames), kReadFailed);
  EXPECT_EQ(frames, 0);
  EXPECT_EQ(readFrame(0, &frame), kReadFailed);
  EXPECT_EQ(manager_.ReadDataFrame(nullptr, 0, &frame, DataRAWa), kReadFailed);
  WriteBytes(path_, Bytes(2000, 'x'));
  EXPECT_EQ(count(frames), kReadFailed);
  EXPECT_EQ(count(frames, DataREPr), kSuccess);
  EXPECT_EQ(frames, 0);
  EXPECT_EQ(readFrame(0, &frame), kReadFailed);
  EXPECT_EQ(readFrame(0, &frame, DataREPr), kReadFailed);
}

TEST_F(ReadFromAFile, OffsetOf0HasNoFrames) {
  WriteBytes(path_, Join({StoredHeader(0), StoredBlock("RAWa", 1, 1)}));
  int frames = 5;
  Vex2FrameData frame = MakeFrame(1, 9);
  EXPECT_EQ(count(frames), kSuccess);
  EXPECT_EQ(frames, 0);
  EXPECT_EQ(readFrame(0, &frame), kSuccess);
  EXPECT_TRUE(SameFrame(frame, MakeFrame(1, 9)));
}

TEST_F(ReadFromAFile, OffsetPastTheFileIsAFailedReadOfAFrameAndNoFrames) {
  for (const std::uint32_t offset : {5000U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
    WriteBytes(path_, Join({StoredHeader(offset), StoredBlock("RAWa", 1, 1)}));
    int frames = 5;
    Vex2FrameData frame = MakeFrame(1, 9);
    EXPECT_EQ(count(frames), kSuccess);
    EXPECT_EQ(frames, 0);
    EXPECT_EQ(readFrame(0, &frame), kReadFailed);
    EXPECT_TRUE(SameFrame(frame, MakeFrame(1, 9)));
  }
}

TEST_F(ReadFromAFile, BlockWithoutWellsHasNoFramesWhateverItsLength) {
  Bytes block = StoredBlock("RAWa", 0, 0);
  SetLongAt(block, 4, 0xFFFFFFFF);
  WriteBytes(path_, Join({StoredHeader(1024), block}));
  int frames = 5;
  EXPECT_EQ(count(frames), kSuccess);
  EXPECT_EQ(frames, 0);
  EXPECT_EQ(readFrame(0, nullptr), kSuccess);
}

TEST_F(ReadFromAFile, FrameCountFollowsFromTheLengthField) {
  const std::pair<std::uint32_t, int> cases[] = {
      {0, 0}, {17, 0}, {18, 0}, {21, 0}, {22 + 159, 0}, {22 + 160, 1}, {0xFFFFFFFF, 26843545}};
  for (const auto& [length, expected] : cases) {
    Bytes block = StoredBlock("RAWa", 2, 1);
    SetLongAt(block, 4, length);
    WriteBytes(path_, Join({StoredHeader(1024), block}));
    int frames = -1;
    EXPECT_EQ(count(frames), kSuccess);
    EXPECT_EQ(frames, expected) << length;
    Vex2FrameData frame;
    EXPECT_EQ(readFrame(1, &frame), expected > 1 ? kReadFailed : kSuccess) << length;
    EXPECT_EQ(frame.wellCount, expected > 1 ? 2 : 0) << length;
  }
}

TEST_F(ReadFromAFile, TimeBlockSizeLeadsToTheWellCountButNotToTheFrames) {
  // The time block has 14 bytes, so the frame begins two bytes later than in a block with the usual
  // 12.
  const Bytes block = ByteString()
                          .Text("RAWa")
                          .Long(20 + 80)
                          .Short(2)
                          .Short(14)
                          .Zeros(14)
                          .Short(1)
                          .Short(0x1234)
                          .Raw(StoredRecord(MakeRecord(0, 0)));
  WriteBytes(path_, Join({StoredHeader(1024), block}));
  int frames = -1;
  EXPECT_EQ(count(frames), kSuccess);
  EXPECT_EQ(frames, 1);
  Vex2FrameData frame;
  EXPECT_EQ(readFrame(0, &frame), kSuccess);
  ASSERT_EQ(frame.wellCount, 1);
  EXPECT_EQ(frame.records[0].leading[0], 0x1234);
  EXPECT_EQ(frame.records[0].leading[1], MakeRecord(0, 0).leading[0]);
}

TEST_F(ReadFromAFile, CutOffFrameIsAFailedRead) {
  run(2, 2);
  Bytes bytes = file();
  bytes.pop_back();
  WriteBytes(path_, bytes);
  Vex2FrameData frame;
  EXPECT_EQ(readFrame(1, &frame), kReadFailed);
  ASSERT_EQ(frame.wellCount, 2) << "prepared for the block's wells";
  EXPECT_EQ(frame.records[1], Vex2WellRecord{});
  EXPECT_EQ(readFrame(1, nullptr), kReadFailed);
  EXPECT_EQ(readFrame(0, &frame), kSuccess);
  EXPECT_TRUE(SameFrame(frame, MakeFrame(2, 0)));
}

TEST_F(ReadFromAFile, FailingReadsAreAStatusAndTheFileIsClosed) {
  run(2, 2);
  FaultyFileSystem files;
  files.FailKind(FileCall::read, EIO);
  int frames = 5;
  Vex2FrameData frame;
  EXPECT_EQ(count(frames), kReadFailed);
  EXPECT_EQ(frames, 0);
  EXPECT_FALSE(manager_.IsOpen());
  EXPECT_EQ(readFrame(0, &frame), kReadFailed);
  EXPECT_FALSE(manager_.IsOpen());
  files.Restart();
  EXPECT_EQ(readFrame(0, &frame), kSuccess);
}

}  // namespace
}  // namespace vex2::test
