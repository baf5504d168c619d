// Tests how whole data blocks are appended, replaced, removed and found in files.
#include <gtest/gtest.h>

#include "tests/support/FaultyFileSystem.h"
#include "tests/support/RecordingHost.h"
#include "tests/support/RunDocument.h"
#include "tests/support/TempFolder.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::test {
namespace {

class DataBlocks : public TempFolderTest {
 protected:
  // Data with frames that the tests own, as a caller passes it.
  struct Data : Vex2AcquisitionData {
    Data(std::uint16_t wells, int count) {
      for (int i = 0; i < count; ++i) owned.push_back(MakeFrame(wells, i));
      frames = owned.data();
      frameCount = count;
    }
    std::vector<Vex2FrameData> owned;
  };

  void document(const std::vector<Bytes>& records, std::uint32_t dataOffset = 0,
                std::uint32_t programOffset = 0) {
    Bytes header = StoredHeader(dataOffset);
    SetLongAt(header, 24, programOffset);
    WriteBytes(path_, Join({header, Join(records)}));
  }
  Bytes file() { return ReadBytes(path_); }
  int replace(const Vex2AcquisitionData* data, Vex2DataType type) {
    return manager_.ReplaceAcquisitionDataBlock(path_.c_str(), data, type);
  }

  RecordingHost host_;
  OpenedManager manager_;
  std::string path_ = folder_ / "run.vex";
  const Bytes other_ = ByteString().Text("XXXX").Long(3).Text("abc");
};

TEST_F(DataBlocks, AppendingWritesTheBlockAtTheEndAndItsOffsetInTheHeader) {
  document({other_});
  Data data(3, 2);
  EXPECT_EQ(manager_.AppendAcquisitionDataBlock(path_.c_str(), &data), kSuccess);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(1035), other_, StoredBlock("RAWa", 3, 2)})),
            "");
  EXPECT_EQ(manager_.AcquisitionDataOffset(), 1035U);
  EXPECT_FALSE(manager_.IsOpen());
}

TEST_F(DataBlocks, AppendingWithoutAFileKeepsTheBlockInMemory) {
  Data data(3, 2);
  EXPECT_EQ(manager_.AppendAcquisitionDataBlock(nullptr, &data), kWriteFailed);
  EXPECT_EQ(manager_.AppendAcquisitionDataBlock((folder_ / "none/run.vex").c_str(), &data),
            kWriteFailed);
  EXPECT_EQ(TagsOf(manager_), "RAWa");
  EXPECT_EQ(manager_.GetDataFrameCount(DataRAWa), 2);
}

TEST_F(DataBlocks, AppendingToAFileThatStaysShorterThanAHeaderFailsAndLeavesIt) {
  WriteBytes(path_, Bytes(900, 7));
  Data data(1, 1);
  EXPECT_EQ(manager_.AppendAcquisitionDataBlock(path_.c_str(), &data), kWriteFailed);
  EXPECT_EQ(FirstDifference(file(), Bytes(900, 7)), "");
}

TEST_F(DataBlocks, AppendingNothingWritesAnEmptyBlock) {
  document({});
  EXPECT_EQ(manager_.AppendAcquisitionDataBlock(path_.c_str(), nullptr), kSuccess);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(1024), StoredBlock("RAWa", 0, 0)})), "");
}

TEST_F(DataBlocks, GivenBlockIsWrittenEvenIfOthersHaveItsTag) {
  const auto twoOfEach = {StoredBlock("RAWa", 1, 1), StoredBlock("REPr", 1, 1),
                          StoredBlock("RAWa", 1, 2), StoredBlock("REPr", 1, 2)};
  Data data(3, 1);
  const std::string target = folder_ / "target.vex";
  for (const auto type : {DataRAWa, DataREPr}) {
    document(twoOfEach);
    ASSERT_EQ(manager_.ReadFromFile(path_.c_str()), kSuccess);
    WriteBytes(target, StoredHeader());
    EXPECT_EQ(manager_.ReplaceAcquisitionDataBlock(target.c_str(), &data, type), kSuccess);
    EXPECT_EQ(FirstDifference(Slice(ReadBytes(target), 1024, ReadBytes(target).size() - 1024),
                              StoredBlock(type == DataRAWa ? "RAWa" : "REPr", 3, 1)),
              "");
  }
  document(twoOfEach);
  ASSERT_EQ(manager_.ReadFromFile(path_.c_str()), kSuccess);
  WriteBytes(target, StoredHeader());
  EXPECT_EQ(manager_.AppendAcquisitionDataBlock(target.c_str(), &data), kSuccess);
  EXPECT_EQ(
      FirstDifference(ReadBytes(target), Join({StoredHeader(1024), StoredBlock("RAWa", 3, 1)})),
      "");
}

TEST_F(DataBlocks, AppendingNeedsNoPermissionToRead) {
  document({other_});
  FaultyFileSystem files;
  files.RefuseReaders(EACCES);
  Data data(3, 2);
  EXPECT_EQ(manager_.AppendAcquisitionDataBlock(path_.c_str(), &data), kSuccess);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(1035), other_, StoredBlock("RAWa", 3, 2)})),
            "");
}

TEST_F(DataBlocks, FullSaveStoresTheOffsetPastTheBlock) {
  document({});
  Data data(3, 2);
  EXPECT_EQ(manager_.AppendAcquisitionDataBlock(path_.c_str(), &data), kSuccess);
  EXPECT_EQ(LongAt(file(), 68), 1024U);
  EXPECT_EQ(manager_.SaveToFile(path_.c_str()), kSuccess);
  EXPECT_EQ(LongAt(file(), 68), 1024U + 8 + 18 + 6 + 480);
  EXPECT_EQ(file().size(), LongAt(file(), 68));
}

TEST_F(DataBlocks, RemovingChangesOnlyMemory) {
  document({StoredBlock("REPr", 1, 1)});
  const Bytes before = file();
  EXPECT_EQ(manager_.ReadFromFile(path_.c_str()), kSuccess);
  EXPECT_EQ(manager_.RemoveAcquisitionDataBlock(DataREPn), kSuccess);
  EXPECT_EQ(manager_.GetAllComponentCount(), 1);
  EXPECT_EQ(manager_.RemoveAcquisitionDataBlock(DataREPr), kSuccess);
  EXPECT_EQ(manager_.GetAllComponentCount(), 0);
  EXPECT_EQ(manager_.RemoveAcquisitionDataBlock(DataREPr), kSuccess);
  EXPECT_EQ(file(), before);
}

TEST_F(DataBlocks, ReplacingRawDataWithOffset0AppendsThemAndFillsInTheOffset) {
  document({other_});
  Data data(3, 2);
  EXPECT_EQ(replace(&data, DataRAWa), kSuccess);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(1035), other_, StoredBlock("RAWa", 3, 2)})),
            "");
  EXPECT_FALSE(manager_.IsOpen());
}

TEST_F(DataBlocks, ReplacingRawDataInPlaceCutsTheFileRightAfterThem) {
  document({other_, StoredBlock("RAWa", 3, 5), other_}, 1035);
  Data data(2, 1);
  EXPECT_EQ(replace(&data, DataRAWa), kSuccess);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(1035), other_, StoredBlock("RAWa", 2, 1)})),
            "");
}

TEST_F(DataBlocks, ReplacingRawDataByMoreMakesTheFileLonger) {
  document({StoredBlock("RAWa", 1, 1)}, 1024);
  Data data(4, 50);
  EXPECT_EQ(replace(&data, DataRAWa), kSuccess);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(1024), StoredBlock("RAWa", 4, 50)})), "");
}

TEST_F(DataBlocks, ReplacingMovesTheBlockToTheEndOfTheListAlsoOnFailure) {
  document({StoredBlock("RAWa", 1, 1), ByteString().Text("RQAT").Long(2).Short(1)});
  EXPECT_EQ(manager_.ReadFromFile(path_.c_str()), kSuccess);
  Data data(2, 3);
  for (const char* path : {static_cast<const char*>(nullptr), "/nonexistent/run.vex"}) {
    EXPECT_EQ(manager_.ReplaceAcquisitionDataBlock(path, &data, DataRAWa), kReadFailed);
    EXPECT_EQ(manager_.ReplaceAcquisitionDataBlock(path, &data, DataREPr), kReadFailed);
  }
  EXPECT_EQ(TagsOf(manager_), "RQAT RAWa REPr");
  EXPECT_EQ(manager_.GetDataFrameCount(DataRAWa), 3);
}

TEST_F(DataBlocks, ReplacingInWhatIsNoDocumentIsAFailedRead) {
  WriteBytes(path_, Bytes(2000, 'x'));
  Data data(1, 1);
  EXPECT_EQ(replace(&data, DataRAWa), kReadFailed);
  EXPECT_EQ(replace(&data, DataREPt), kReadFailed);
  EXPECT_EQ(file(), Bytes(2000, 'x'));
}

TEST_F(DataBlocks, ReplacingAnInvalidTypeChangesNothing) {
  document({});
  Data data(1, 1);
  for (const int row : {-1, 1000}) {
    EXPECT_EQ(replace(&data, static_cast<Vex2DataType>(row)), kNotFound) << row;
  }
  EXPECT_EQ(TagsOf(manager_), "");
  EXPECT_EQ(file(), StoredHeader());
}

TEST_F(DataBlocks, ReplacingRawDataInAFileTooShortForTheirOffsetIsAFailedRead) {
  WriteBytes(path_, Slice(StoredHeader(), 0, 70));
  Data data(1, 1);
  EXPECT_EQ(replace(&data, DataRAWa), kReadFailed);
  EXPECT_EQ(file(), Slice(StoredHeader(), 0, 70));
}

TEST_F(DataBlocks, ReplacingInAReadOnlyFileIsAFailedWrite) {
  document({StoredBlock("RAWa", 1, 1)}, 1024);
  const Bytes before = file();
  FaultyFileSystem files;
  files.RefuseWriters(EACCES);
  Data data(1, 1);
  EXPECT_EQ(replace(&data, DataRAWa), kWriteFailed);
  EXPECT_EQ(replace(&data, DataREPr), kWriteFailed);
  EXPECT_FALSE(manager_.IsOpen());
  EXPECT_EQ(file(), before);
  WriteBytes(path_, ToBytes("no document"));
  EXPECT_EQ(replace(&data, DataRAWa), kReadFailed) << "this is said first";
}

TEST_F(DataBlocks, ReportingBlocksEndBeforeTooFewBytesForATag) {
  Data data(1, 1);
  document({StoredBlock("REPr", 1, 2), ToBytes("XXX")});
  EXPECT_EQ(replace(&data, DataREPr), kSuccess);
}

TEST_F(DataBlocks, FailedReadIsReportedBeforeARefusedWrite) {
  FaultyFileSystem files;
  Data data(1, 1);
  WriteBytes(path_, Slice(StoredHeader(), 0, 70));
  files.RefuseWriters(EACCES);
  EXPECT_EQ(replace(&data, DataRAWa), kReadFailed);
  Bytes torn = StoredBlock("REPr", 1, 2);
  torn.pop_back();
  document({torn});
  EXPECT_EQ(replace(&data, DataREPr), kReadFailed);
  document({ToBytes("XXXX")});
  EXPECT_EQ(replace(&data, DataREPr), kNotFound);
}

TEST_F(DataBlocks, ReplacingAReportingBlockKeepsTheOthersAfterIt) {
  document(
      {other_, StoredBlock("RAWa", 1, 2), StoredBlock("REPr", 1, 1), StoredBlock("REPd", 1, 3)},
      1035, 1024);
  Data data(2, 1);
  EXPECT_EQ(replace(&data, DataREPd), kSuccess);
  Bytes header = StoredHeader(1035);
  SetLongAt(header, 24, 1024);
  EXPECT_EQ(FirstDifference(file(), Join({header, other_, StoredBlock("RAWa", 1, 2),
                                          StoredBlock("REPd", 2, 1), StoredBlock("REPr", 1, 1)})),
            "");
}

TEST_F(DataBlocks, FirstReportingBlockGoesToTheEndOfTheFile) {
  document({StoredBlock("RAWa", 1, 1), other_}, 1024);
  Data data(2, 1);
  EXPECT_EQ(replace(&data, DataREPn), kSuccess);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(1024), StoredBlock("RAWa", 1, 1), other_,
                                          StoredBlock("REPn", 2, 1)})),
            "");
}

TEST_F(DataBlocks, BytesAfterReportingBlocksAreCutOffAndOffsetsCleared) {
  const Bytes reporting = StoredBlock("REPr", 1, 1);
  const auto programAt = static_cast<std::uint32_t>(1024 + reporting.size());
  document({reporting, ByteString().Text("TPro").Long(3).Text("abc"), StoredBlock("RAWa", 1, 1)},
           programAt + 11, programAt);
  Data data(1, 2);
  EXPECT_EQ(replace(&data, DataREPr), kSuccess);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(0), StoredBlock("REPr", 1, 2)})), "");
}

TEST_F(DataBlocks, OnlyTheFirstBlockOfTheReplacedTagIsDropped) {
  document({StoredBlock("REPt", 1, 1), StoredBlock("REPt", 1, 2), StoredBlock("REPn", 1, 3)});
  Data data(1, 4);
  EXPECT_EQ(replace(&data, DataREPt), kSuccess);
  EXPECT_EQ(FirstDifference(file(), Join({StoredHeader(), StoredBlock("REPt", 1, 4),
                                          StoredBlock("REPt", 1, 2), StoredBlock("REPn", 1, 3)})),
            "");
}

TEST_F(DataBlocks, AReportingBlockThatCannotBeReadLeavesTheFile) {
  Bytes torn = StoredBlock("REPr", 1, 2);
  torn.pop_back();
  document({torn});
  const Bytes before = file();
  Data data(1, 1);
  EXPECT_EQ(replace(&data, DataREPr), kReadFailed);
  EXPECT_EQ(file(), before);
}

TEST_F(DataBlocks, ReplacingShowsTheWaitCursorAndTracesItsTime) {
  document({});
  Data data(1, 1);
  EXPECT_EQ(replace(&data, DataREPr), kSuccess);
  EXPECT_EQ(host_.waitsBegun, 1);
  EXPECT_EQ(host_.waitsEnded, 1);
  ASSERT_EQ(host_.traces.size(), 1U);
  EXPECT_EQ(host_.traces[0].find(
                "Total time needed for replacing Acquisition/Reporting Data is: days: 0, hours: "),
            0U);
}

TEST_F(DataBlocks, WaitForAReplacementEndsBeforeItsTimeIsTraced) {
  struct OrderedHost : SilentHost {
    std::string calls;
    void BeginWait() override { calls += "begin "; }
    void EndWait() override { calls += "end "; }
    CTime Now() override {
      if (!calls.ends_with("end ")) calls += "now ";
      return SilentHost::Now();
    }
    void Trace(const std::string& /*text*/) override { calls += "trace "; }
  } host;
  document({});
  Data data(1, 1);
  EXPECT_EQ(replace(&data, DataREPr), kSuccess);
  EXPECT_EQ(host.calls, "begin now end trace ");
}

TEST_F(DataBlocks, OffsetOfABlockIsThatOfItsTag) {
  document({other_, StoredBlock("REPr", 1, 1), StoredBlock("REPd", 1, 1)});
  ASSERT_EQ(manager_.SafeOpen(path_.c_str(), 0, 0), 1);
  EXPECT_EQ(manager_.findReporterCompOffset(DataREPr), 1035);
  EXPECT_EQ(manager_.findReporterCompOffset(DataREPd),
            static_cast<long>(1035 + StoredBlock("REPr", 1, 1).size()));
  EXPECT_EQ(manager_.findReporterCompOffset(DataREPn), 0);
  EXPECT_EQ(manager_.findReporterCompOffset(DataRAWa), 0);
}

TEST_F(DataBlocks, OffsetInAFileNotLongerThanTheHeaderIs0) {
  document({});
  ASSERT_EQ(manager_.SafeOpen(path_.c_str(), 0, 0), 1);
  EXPECT_EQ(manager_.findReporterCompOffset(DataREPr), 0);
  manager_.Close();
  WriteBytes(path_, ToBytes("Vex2"));
  ASSERT_EQ(manager_.SafeOpen(path_.c_str(), 0, 0), 1);
  EXPECT_EQ(manager_.findReporterCompOffset(DataREPr), 0);
}

TEST_F(DataBlocks, SearchEndsAtARecordThatOverrunsTheFile) {
  document({ByteString().Text("XXXX").Long(0xFFFFFFFF), StoredBlock("REPr", 1, 1)});
  ASSERT_EQ(manager_.SafeOpen(path_.c_str(), 0, 0), 1);
  EXPECT_EQ(manager_.findReporterCompOffset(DataREPr), 0);
}

}  // namespace
}  // namespace vex2::test
