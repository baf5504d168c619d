// Tests frames and well records of data blocks in memory.
#include <gtest/gtest.h>

#include <climits>

#include "tests/support/RecordingHost.h"
#include "tests/support/RunDocument.h"
#include "tests/support/TempFolder.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::test {
namespace {

class Frames : public testing::Test {
 protected:
  void initialise(std::uint16_t wells, Vex2DataType type = DataRAWa) {
    const auto numbers = WellNumbers(wells);
    manager_.InitAcqDataWellNumberArray(numbers.data(), wells, type);
  }
  // Appends a frame without a file. This is possible only for reporting blocks.
  void append(const Vex2FrameData& frame, Vex2DataType type = DataREPr) {
    EXPECT_EQ(manager_.AppendAcquisitionDataFrame(nullptr, &frame, type), kSuccess);
  }
  std::uint32_t length(Vex2DataType type) { return manager_.findBlock(type)->GetLength(); }

  RecordingHost host_;
  OpenedManager manager_;
};

TEST_F(Frames, InitialisingMakesABlockForTheWells) {
  const unsigned short numbers[] = {3, 9};
  manager_.InitAcqDataWellNumberArray(numbers, 2, DataREPt);
  EXPECT_EQ(TagsOf(manager_), "REPt");
  EXPECT_EQ(manager_.GetWellCount(DataREPt), 2);
  EXPECT_EQ(manager_.GetDataFrameCount(DataREPt), 0);
  EXPECT_EQ(length(DataREPt), 22U);
  EXPECT_EQ(manager_.findBlock(DataREPt)->FindWell(9), 1);
}

TEST_F(Frames, InitialisingWithoutNumbersMakesAnEmptyBlock) {
  manager_.InitAcqDataWellNumberArray(nullptr, 5, DataRAWa);
  EXPECT_EQ(length(DataRAWa), 18U);
  EXPECT_EQ(manager_.GetWellCount(DataRAWa), 0);
}

TEST_F(Frames, InitialisingWithTheSameCountKeepsTheFrames) {
  append(MakeFrame(2, 0));
  const unsigned short numbers[] = {3, 9};
  manager_.InitAcqDataWellNumberArray(numbers, 2, DataREPr);
  EXPECT_EQ(manager_.GetDataFrameCount(DataREPr), 1);
  Vex2WellRecord record;
  EXPECT_TRUE(manager_.GetAcqDataWellRecord(&record, 0, 9, DataREPr));
  EXPECT_EQ(record, MakeRecord(0, 1));
}

TEST_F(Frames, InitialisingWithAnotherCountDropsFramesKeepsLength) {
  append(MakeFrame(2, 0));
  const auto before = length(DataREPr);
  initialise(1, DataREPr);
  EXPECT_EQ(manager_.GetWellCount(DataREPr), 1);
  EXPECT_EQ(length(DataREPr), before);
  Vex2WellRecord record = MakeRecord(5, 5);
  EXPECT_TRUE(manager_.GetAcqDataWellRecord(&record, 0, 1, DataREPr));
  EXPECT_EQ(record, Vex2WellRecord{});
}

TEST_F(Frames, InitialisingAnExistingBlockWithoutNumbersChangesNothing) {
  append(MakeFrame(2, 0));
  const unsigned short number = 1;
  manager_.InitAcqDataWellNumberArray(nullptr, 5, DataREPr);
  manager_.InitAcqDataWellNumberArray(&number, 0, DataREPr);
  EXPECT_EQ(manager_.GetWellCount(DataREPr), 2);
  EXPECT_EQ(manager_.GetDataFrameCount(DataREPr), 1);
}

TEST_F(Frames, AppendedFramesAreNumberedFrom0) {
  for (int i = 0; i < 45; ++i) append(MakeFrame(3, i));
  EXPECT_EQ(manager_.GetDataFrameCount(DataREPr), 45);
  for (int i = 0; i < 45; ++i) {
    Vex2FrameData frame;
    EXPECT_EQ(manager_.ReadDataFrame(i, &frame, DataREPr), kSuccess);
    EXPECT_TRUE(SameFrame(frame, MakeFrame(3, i))) << i;
  }
}

TEST_F(Frames, SettingAWellWithoutABlockShowsAMessage) {
  const Vex2WellRecord record = MakeRecord(0, 0);
  EXPECT_FALSE(manager_.SetAcqDataWellRecord(&record, 0, 1, DataRAWa));
  EXPECT_EQ(host_.messages,
            std::vector<std::string>{
                "The function Vex2FileManager::InitAcqDataWellNumberArray() needs to be called "
                "first, before we can call Vex2FileManager::SetAcqDataWellRecord"});
}

TEST_F(Frames, FirstFilledRecordOfAFrameRaisesTheFrameCount) {
  initialise(2);
  const Vex2WellRecord record = MakeRecord(0, 0);
  EXPECT_TRUE(manager_.SetAcqDataWellRecord(&record, 0, 1, DataRAWa));
  EXPECT_EQ(manager_.GetDataFrameCount(DataRAWa), 1);
  EXPECT_EQ(length(DataRAWa), 22U + 160);
  EXPECT_TRUE(manager_.SetAcqDataWellRecord(&record, 0, 2, DataRAWa));
  EXPECT_EQ(manager_.GetDataFrameCount(DataRAWa), 1);
  EXPECT_TRUE(host_.messages.empty());
}

TEST_F(Frames, Frame3OfABlockWith2FramesRaisesTheFrameCountTo3) {
  append(MakeFrame(2, 0));
  append(MakeFrame(2, 1));
  const Vex2WellRecord record = MakeRecord(0, 0);
  EXPECT_TRUE(manager_.SetAcqDataWellRecord(&record, 3, 1, DataREPr));
  EXPECT_EQ(manager_.GetDataFrameCount(DataREPr), 3);
}

TEST_F(Frames, RecordWhoseFirstValueIs0DoesNotRaiseTheFrameCount) {
  initialise(2);
  Vex2WellRecord record = MakeRecord(0, 0);
  record.leading[0] = 0;
  EXPECT_TRUE(manager_.SetAcqDataWellRecord(&record, 0, 1, DataRAWa));
  EXPECT_EQ(manager_.GetDataFrameCount(DataRAWa), 0);
}

TEST_F(Frames, SettingTheOnlyFilledRecordAgainRaisesTheFrameCountAgain) {
  initialise(2);
  const Vex2WellRecord record = MakeRecord(0, 0);
  EXPECT_TRUE(manager_.SetAcqDataWellRecord(&record, 0, 1, DataRAWa));
  EXPECT_TRUE(manager_.SetAcqDataWellRecord(&record, 0, 1, DataRAWa));
  EXPECT_EQ(manager_.GetDataFrameCount(DataRAWa), 2);
}

TEST_F(Frames, AllValuesOfARecordAreKeptInMemory) {
  initialise(1);
  Vex2WellRecord record = MakeRecord(0, 0);
  for (int i = 32; i < 36; ++i) record.data[i] = 0xABCD;
  EXPECT_TRUE(manager_.SetAcqDataWellRecord(&record, 0, 1, DataRAWa));
  Vex2WellRecord read;
  EXPECT_TRUE(manager_.GetAcqDataWellRecord(&read, 0, 1, DataRAWa));
  EXPECT_EQ(read, record);
}

TEST_F(Frames, UnknownWellOrImpossibleFrameIsRefusedWithoutAMessage) {
  initialise(2);
  const Vex2WellRecord record = MakeRecord(0, 0);
  EXPECT_FALSE(manager_.SetAcqDataWellRecord(&record, 0, 3, DataRAWa));
  EXPECT_FALSE(manager_.SetAcqDataWellRecord(&record, 0, -1, DataRAWa));
  EXPECT_FALSE(manager_.SetAcqDataWellRecord(&record, 0, 65537, DataRAWa));
  EXPECT_FALSE(manager_.SetAcqDataWellRecord(&record, -1, 1, DataRAWa));
  EXPECT_FALSE(manager_.SetAcqDataWellRecord(&record, INT_MAX, 1, DataRAWa));
  EXPECT_TRUE(host_.messages.empty());
  EXPECT_EQ(length(DataRAWa), 22U);
}

TEST_F(Frames, TimesAreSixBytesInMemory) {
  TimeStamp time{{1, 2, 3, 4, 5, 255}};
  EXPECT_FALSE(manager_.SetAcqDataStartTime(time, DataRAWa));
  EXPECT_FALSE(manager_.SetAcqDataEndTime(time, DataRAWa));
  EXPECT_FALSE(manager_.GetAcqDataStartTime(time, DataRAWa));
  EXPECT_FALSE(manager_.GetAcqDataEndTime(time, DataRAWa));
  initialise(1);
  const TimeStamp start{{1, 2, 3, 4, 5, 6}};
  const TimeStamp end{{7, 8, 9, 10, 11, 12}};
  EXPECT_TRUE(manager_.SetAcqDataStartTime(start, DataRAWa));
  EXPECT_TRUE(manager_.SetAcqDataEndTime(end, DataRAWa));
  EXPECT_TRUE(manager_.GetAcqDataStartTime(time, DataRAWa));
  EXPECT_EQ(time, start);
  EXPECT_TRUE(manager_.GetAcqDataEndTime(time, DataRAWa));
  EXPECT_EQ(time, end);
}

TEST_F(Frames, ReadingAFrameReplacesWhatItHeld) {
  append(MakeFrame(2, 0));
  Vex2FrameData frame = MakeFrame(9, 9);
  EXPECT_EQ(manager_.ReadDataFrame(0, &frame, DataREPr), kSuccess);
  EXPECT_TRUE(SameFrame(frame, MakeFrame(2, 0)));
  frame.records[0] = {};
  Vex2FrameData again;
  EXPECT_EQ(manager_.ReadDataFrame(0, &again, DataREPr), kSuccess);
  EXPECT_TRUE(SameFrame(again, MakeFrame(2, 0)));
}

TEST_F(Frames, ReadingWithoutABlockOrAFrameHasItsStatus) {
  Vex2FrameData frame = MakeFrame(1, 1);
  EXPECT_EQ(manager_.ReadDataFrame(0, &frame, DataRAWa), kNotFound);
  append(MakeFrame(2, 0));
  for (const int index : {-1, 1, INT_MAX, INT_MIN}) {
    EXPECT_EQ(manager_.ReadDataFrame(index, &frame, DataREPr), kNoSuchFrame) << index;
  }
  EXPECT_TRUE(SameFrame(frame, MakeFrame(1, 1)));
  EXPECT_EQ(manager_.ReadDataFrame(0, nullptr, DataREPr), kSuccess);
}

TEST_F(Frames, WellRecordsAreFoundByNumberAndByPosition) {
  append(MakeFrame(2, 0));
  const unsigned short numbers[] = {20, 10};
  manager_.InitAcqDataWellNumberArray(numbers, 2, DataREPr);
  Vex2WellRecord record;
  EXPECT_TRUE(manager_.GetAcqDataWellRecord(&record, 0, 10, DataREPr));
  EXPECT_EQ(record, MakeRecord(0, 1));
  EXPECT_TRUE(manager_.GetAcqDataWellRecordForWellIndex(&record, 0, 0, DataREPr));
  EXPECT_EQ(record, MakeRecord(0, 0));
  EXPECT_FALSE(manager_.GetAcqDataWellRecord(&record, 0, 1, DataREPr));
  EXPECT_FALSE(manager_.GetAcqDataWellRecord(&record, 1, 10, DataREPr));
  EXPECT_FALSE(manager_.GetAcqDataWellRecord(&record, -1, 10, DataREPr));
  EXPECT_FALSE(manager_.GetAcqDataWellRecord(&record, 0, 10, DataRAWa));
  EXPECT_FALSE(manager_.GetAcqDataWellRecordForWellIndex(&record, 0, -1, DataREPr));
  EXPECT_FALSE(manager_.GetAcqDataWellRecordForWellIndex(&record, 0, 2, DataREPr));
  EXPECT_FALSE(manager_.GetAcqDataWellRecordForWellIndex(&record, 1, 0, DataREPr));
  EXPECT_FALSE(manager_.GetAcqDataWellRecordForWellIndex(&record, 0, 0, DataRAWa));
  EXPECT_EQ(record, MakeRecord(0, 0));
}

TEST_F(Frames, DataCountOfAWellIsTheFrameCountOr0) {
  EXPECT_EQ(manager_.GetDataCntInWell(1, DataREPr), 0);
  append(MakeFrame(2, 0));
  append(MakeFrame(2, 1));
  EXPECT_EQ(manager_.GetDataCntInWell(2, DataREPr), 2);
  EXPECT_EQ(manager_.GetDataCntInWell(3, DataREPr), 0);
}

TEST_F(Frames, CountsWithoutABlockAre0) {
  EXPECT_EQ(manager_.GetDataFrameCount(DataRAWa), 0);
  EXPECT_EQ(manager_.GetWellCount(DataRAWa), 0);
}

TEST_F(Frames, FrameCountByNameIs0ForUnknownPlates) {
  append(MakeFrame(2, 0));
  EXPECT_EQ(manager_.GetDataFrameCountByName(nullptr, DataREPr), 1);
  EXPECT_EQ(manager_.GetDataFrameCountByName("plate", DataREPr), 0);
}

TEST_F(Frames, ATypeThatIsNoBlockHasNone) {
  for (const int row : {-1, 0, 35, 1000}) {
    const auto type = static_cast<Vex2DataType>(row);
    EXPECT_EQ(manager_.GetDataFrameCount(type), 0) << row;
    EXPECT_EQ(manager_.CommitAcqDataFrame(nullptr, 0, type), kNotFound) << row;
  }
}

TEST_F(Frames, ATypeThatIsNoBlockTakesNone) {
  const Vex2FrameData frame = MakeFrame(2, 0);
  for (const int row : {-1, 1000}) {
    initialise(2, static_cast<Vex2DataType>(row));
    EXPECT_EQ(manager_.AppendAcquisitionDataFrame(nullptr, &frame, static_cast<Vex2DataType>(row)),
              kNotFound)
        << row;
  }
  EXPECT_EQ(TagsOf(manager_), "");
}

TEST_F(Frames, AppendingNoFrameAddsNone) {
  EXPECT_EQ(manager_.AppendAcquisitionDataFrame(nullptr, nullptr, DataREPr), kNotFound);
  append(MakeFrame(2, 0));
  EXPECT_EQ(manager_.AppendAcquisitionDataFrame(nullptr, nullptr, DataREPr), kSuccess);
  EXPECT_EQ(manager_.GetDataFrameCount(DataREPr), 1);
}

TEST_F(Frames, WellRecordsThatAreNoneAreNotSetAndCanBeAskedFor) {
  append(MakeFrame(2, 0));
  EXPECT_FALSE(manager_.SetAcqDataWellRecord(nullptr, 0, 1, DataREPr));
  EXPECT_TRUE(manager_.GetAcqDataWellRecord(nullptr, 0, 1, DataREPr));
  EXPECT_FALSE(manager_.GetAcqDataWellRecord(nullptr, 0, 3, DataREPr));
}

TEST_F(Frames, ABlockThatIsFullRefusesTheNextFrame) {
  const TempFolder folder;
  const std::string path = folder / "full.vex";
  WriteBytes(
      path,
      Join({StoredHeader(1024),
            ByteString().Text("RAWa").Long(0xFFFFFFFF).Short(2).Short(12).Zeros(12).Short(0)}));
  ASSERT_EQ(manager_.ReadFromFile(path.c_str()), kSuccess);
  initialise(1);
  const Vex2FrameData frame = MakeFrame(1, 0);
  const Bytes before = ReadBytes(path);
  EXPECT_EQ(manager_.AppendAcquisitionDataFrame(path.c_str(), &frame, DataRAWa), kWriteFailed);
  EXPECT_EQ(ReadBytes(path), before);
}

}  // namespace
}  // namespace vex2::test
