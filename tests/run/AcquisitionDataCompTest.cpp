#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "tests/support/RunDocument.h"
#include "tests/support/TempFolder.h"
#include "vex2/container/Status.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::test {
namespace {

TEST(AcquisitionDataComp, EmptyBlockHasBodyLength18AndCapacity40) {
  const AcquisitionDataComp block("RAWa");
  EXPECT_EQ(block.GetLength(), 18U);
  EXPECT_EQ(block.GetVersion(), 2);
  EXPECT_EQ(block.GetTimeBlockSize(), 12);
  EXPECT_EQ(block.GetStartTime(), TimeStamp{});
  EXPECT_EQ(block.GetEndTime(), TimeStamp{});
  EXPECT_EQ(block.GetWellCount(), 0);
  EXPECT_EQ(block.GetFrameCount(), 0);
  EXPECT_EQ(block.GetFrameCapacity(), 40);
}

TEST(AcquisitionDataComp, BodyLengthOf96WellsIs210AndOneFrameMakesIt7890) {
  const auto numbers = WellNumbers(96);
  AcquisitionDataComp block("RAWa", numbers.data(), 96);
  EXPECT_EQ(block.GetLength(), 210U);
  EXPECT_EQ(block.GetFrameCount(), 0);
  EXPECT_TRUE(block.SetFrame(0, MakeFrame(96, 0)));
  EXPECT_EQ(block.GetLength(), 7890U);
  EXPECT_EQ(block.GetFrameCount(), 1);
}

TEST(AcquisitionDataComp, GivenWellNumbersReplaceTheDefaults) {
  const std::uint16_t numbers[] = {7, 65535, 0};
  const AcquisitionDataComp block("REPr", numbers, 3);
  EXPECT_EQ(block.GetWellNumbers()[0], 7);
  EXPECT_EQ(block.FindWell(65535), 1);
  EXPECT_EQ(block.FindWell(0), 2);
  EXPECT_EQ(block.FindWell(1), -1);
}

TEST(AcquisitionDataComp, NoNumbersOrNoCountMakeAnEmptyBlock) {
  const std::uint16_t number = 1;
  EXPECT_EQ(AcquisitionDataComp("RAWa", nullptr, 5).GetLength(), 18U);
  EXPECT_EQ(AcquisitionDataComp("RAWa", &number, 0).GetLength(), 18U);
}

TEST(AcquisitionDataComp, FirstPositionOfAWellNumberCounts) {
  const std::uint16_t numbers[] = {5, 5};
  EXPECT_EQ(AcquisitionDataComp("RAWa", numbers, 2).FindWell(5), 0);
}

TEST(AcquisitionDataComp, BlockFromAFrameHasWellsFrom1AndThatFrame) {
  const Vex2FrameData frame = MakeFrame(3, 4);
  const AcquisitionDataComp block("RAWa", frame);
  EXPECT_EQ(block.GetLength(), 18U + 6 + 240);
  EXPECT_EQ(block.FindWell(3), 2);
  Vex2FrameData read;
  block.CopyFrame(0, read);
  EXPECT_TRUE(SameFrame(read, frame));
}

TEST(AcquisitionDataComp, BlockFromDataHoldsAllFrames) {
  Vex2FrameData frames[] = {MakeFrame(2, 0), MakeFrame(2, 1), MakeFrame(2, 2)};
  const AcquisitionDataComp block("RAWa", Vex2AcquisitionData{frames, 3});
  EXPECT_EQ(block.GetLength(), 18U + 4 + 3 * 160);
  ASSERT_EQ(block.GetFrameCount(), 3);
  for (int i = 0; i < 3; ++i) {
    Vex2FrameData read;
    block.CopyFrame(i, read);
    EXPECT_TRUE(SameFrame(read, frames[i])) << i;
  }
}

TEST(AcquisitionDataComp, BlockFromDataWithoutFramesIsEmpty) {
  const AcquisitionDataComp block("RAWa", Vex2AcquisitionData{nullptr, 3});
  EXPECT_EQ(block.GetLength(), 18U);
  EXPECT_EQ(block.GetWellCount(), 0);
}

TEST(AcquisitionDataComp, BlockFromFrameCount0HasTheWellsOfTheFirstFrame) {
  const Vex2FrameData frame = MakeFrame(3, 0);
  for (const int count : {0, -1}) {
    const AcquisitionDataComp block("RAWa",
                                    Vex2AcquisitionData{const_cast<Vex2FrameData*>(&frame), count});
    EXPECT_EQ(block.GetLength(), 18U + 6);
    EXPECT_EQ(block.GetWellCount(), 3);
    EXPECT_EQ(block.GetFrameCount(), 0);
    EXPECT_EQ(block.FindWell(3), 2);
  }
}

TEST(AcquisitionDataComp, ShorterFramesAreFilledUpWithZeros) {
  const auto numbers = WellNumbers(3);
  AcquisitionDataComp block("RAWa", numbers.data(), 3);
  EXPECT_TRUE(block.SetFrame(0, MakeFrame(1, 0)));
  Vex2FrameData read;
  block.CopyFrame(0, read);
  EXPECT_EQ(read.records[0], MakeRecord(0, 0));
  EXPECT_EQ(read.records[1], Vex2WellRecord{});
  EXPECT_EQ(read.records[2], Vex2WellRecord{});
}

TEST(AcquisitionDataComp, LongerFramesAreCutToTheBlocksWells) {
  const auto numbers = WellNumbers(2);
  AcquisitionDataComp block("RAWa", numbers.data(), 2);
  EXPECT_TRUE(block.SetFrame(0, MakeFrame(384, 0)));
  EXPECT_EQ(block.GetLength(), 18U + 4 + 160);
  Vex2FrameData kept;
  block.CopyFrame(0, kept);
  EXPECT_TRUE(SameFrame(kept, MakeFrame(2, 0)));
}

TEST(AcquisitionDataComp, Frame40GrowsTheCapacityTo80AndKeepsTheFramesBefore) {
  const auto numbers = WellNumbers(2);
  AcquisitionDataComp block("RAWa", numbers.data(), 2);
  for (int i = 0; i < 40; ++i) ASSERT_TRUE(block.SetFrame(i, MakeFrame(2, i)));
  EXPECT_EQ(block.GetFrameCapacity(), 40);
  ASSERT_TRUE(block.SetFrame(40, MakeFrame(2, 40)));
  EXPECT_EQ(block.GetFrameCapacity(), 80);
  for (int i = 0; i <= 40; ++i) {
    Vex2FrameData read;
    block.CopyFrame(i, read);
    EXPECT_TRUE(SameFrame(read, MakeFrame(2, i))) << i;
  }
}

class CapacityGrowth : public testing::TestWithParam<std::pair<int, int>> {};

TEST_P(CapacityGrowth, IsByWholeChunks) {
  const std::uint16_t number = 1;
  AcquisitionDataComp block("RAWa", &number, 1);
  ASSERT_TRUE(block.SetWellRecord(GetParam().first, 0, MakeRecord(0, 0)));
  EXPECT_EQ(block.GetFrameCapacity(), GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(From40, CapacityGrowth,
                         testing::Values(std::pair{39, 40}, std::pair{40, 80}, std::pair{78, 80},
                                         std::pair{79, 120}, std::pair{80, 120},
                                         std::pair{119, 160}));

TEST(AcquisitionDataComp, FrameIndexesPastWhatADocumentHoldsAreRefused) {
  const std::uint16_t number = 1;
  AcquisitionDataComp block("RAWa", &number, 1);
  for (const int index : {-1, INT_MIN, INT_MAX}) {
    EXPECT_FALSE(block.SetFrame(index, MakeFrame(1, 0))) << index;
    EXPECT_FALSE(block.SetWellRecord(index, 0, MakeRecord(0, 0))) << index;
    EXPECT_EQ(block.GetFrame(index), nullptr) << index;
  }
  EXPECT_EQ(block.GetLength(), 20U);
  EXPECT_EQ(block.GetFrameCapacity(), 40);
}

TEST(AcquisitionDataComp, FramesOfABlockWithoutWellsChangeNothing) {
  AcquisitionDataComp block("RAWa");
  EXPECT_TRUE(block.SetFrame(0, MakeFrame(3, 0)));
  EXPECT_FALSE(block.SetWellRecord(0, 0, MakeRecord(0, 0)));
  EXPECT_EQ(block.GetLength(), 18U);
}

TEST(AcquisitionDataComp, TakesAsManyWellsAsANumberCanCount) {
  const auto numbers = WellNumbers(65535);
  AcquisitionDataComp block("RAWa", numbers.data(), 65535);
  EXPECT_EQ(block.GetWellCount(), 65535);
  EXPECT_TRUE(block.SetFrame(0, MakeFrame(65535, 0)));
  EXPECT_EQ(block.GetLength(), 18U + 65535 * 82U);
  EXPECT_EQ(block.GetFrameCount(), 1);
  EXPECT_EQ(block.GetFrame(0)[65534], MakeRecord(0, 65534));
}

TEST(AcquisitionDataComp, SettingAFrameAgainLengthensTheBodyAgain) {
  const auto numbers = WellNumbers(2);
  AcquisitionDataComp block("RAWa", numbers.data(), 2);
  EXPECT_TRUE(block.SetFrame(0, MakeFrame(2, 0)));
  EXPECT_TRUE(block.SetFrame(0, MakeFrame(2, 1)));
  EXPECT_EQ(block.GetFrameCount(), 2);
}

TEST(AcquisitionDataComp, OtherWellCountDropsTheFramesAndLeavesTheBodyLength) {
  const auto two = WellNumbers(2);
  const auto three = WellNumbers(3);
  AcquisitionDataComp block("RAWa", two.data(), 2);
  EXPECT_TRUE(block.SetFrame(0, MakeFrame(2, 0)));
  const auto length = block.GetLength();
  block.SetWellNumbers(three.data(), 3);
  EXPECT_EQ(block.GetWellCount(), 3);
  EXPECT_EQ(block.GetLength(), length);
  EXPECT_EQ(block.GetFrame(0), nullptr);
}

TEST(AcquisitionDataComp, SameWellCountKeepsTheFrames) {
  const std::uint16_t numbers[] = {8, 9};
  AcquisitionDataComp block("RAWa", MakeFrame(2, 0));
  block.SetWellNumbers(numbers, 2);
  EXPECT_EQ(block.FindWell(9), 1);
  EXPECT_EQ(block.GetFrame(0)[1], MakeRecord(0, 1));
}

TEST(AcquisitionDataComp, MissingFramesThatTheLengthStillCountsAreZero) {
  const auto many = WellNumbers(384);
  const std::uint16_t one = 1;
  AcquisitionDataComp block("RAWa", many.data(), 384);
  EXPECT_TRUE(block.SetFrame(0, MakeFrame(384, 0)));
  block.SetWellNumbers(&one, 1);
  ASSERT_GT(block.GetFrameCount(), block.GetFrameCapacity());
  Vex2FrameData read;
  block.CopyFrame(block.GetFrameCount() - 1, read);
  EXPECT_EQ(read.records[0], Vex2WellRecord{});
}

TEST(AcquisitionDataComp, ACopyIsEqualAndIndependent) {
  AcquisitionDataComp block("RAWa", MakeFrame(2, 0));
  block.SetStartTime({{1, 2, 3, 4, 5, 6}});
  AcquisitionDataComp copy("RAWa");
  copy.Assign(block);
  EXPECT_TRUE(block.SetWellRecord(0, 0, MakeRecord(9, 9)));
  EXPECT_EQ(copy.GetLength(), 18U + 4 + 160);
  EXPECT_EQ(copy.GetStartTime(), (TimeStamp{{1, 2, 3, 4, 5, 6}}));
  EXPECT_EQ(copy.GetFrame(0)[0], MakeRecord(0, 0));
}

class BlockFiles : public TempFolderTest {
 protected:
  int read(AcquisitionDataComp& block, const Bytes& record) {
    WriteBytes(folder_ / "record", record);
    CFile file;
    EXPECT_TRUE(file.Open((folder_ / "record").c_str(), CFile::modeRead));
    const int status = block.Read(&file);
    left_ = file.GetRemaining();
    return status;
  }
  Bytes written(AcquisitionDataComp& block) {
    CFile file;
    EXPECT_TRUE(file.Open((folder_ / "out").c_str(), CFile::modeWrite | CFile::modeCreate));
    EXPECT_EQ(block.Write(&file), kSuccess);
    file.Close();
    return ReadBytes(folder_ / "out");
  }

  std::uint64_t left_ = 0;
};

TEST_F(BlockFiles, LayoutIsHeadTimesWellsFrames) {
  const std::uint16_t numbers[] = {0x0102, 3};
  AcquisitionDataComp block("RAWa", numbers, 2);
  block.SetStartTime({{1, 2, 3, 4, 5, 6}});
  block.SetEndTime({{7, 8, 9, 10, 11, 12}});
  EXPECT_TRUE(block.SetFrame(0, MakeFrame(2, 0)));
  ByteString expected;
  expected.Text("RAWa").Long(182).Short(2).Short(12);
  for (unsigned i = 1; i <= 12; ++i) expected.Byte(i);
  expected.Short(2).Short(0x0102).Short(3).Raw(StoredFrame(MakeFrame(2, 0)));
  EXPECT_EQ(FirstDifference(written(block), expected), "");
  AcquisitionDataComp again("RAWa");
  EXPECT_EQ(read(again, expected), kSuccess);
  EXPECT_EQ(FirstDifference(written(again), expected), "");
}

TEST_F(BlockFiles, LastFourValuesOfARecordAreNotStored) {
  Vex2FrameData frame = MakeFrame(1, 0);
  for (int i = 32; i < 36; ++i) frame.records[0].data[i] = 0xFFFF;
  AcquisitionDataComp block("RAWa", frame);
  const Bytes bytes = written(block);
  EXPECT_EQ(FirstDifference(bytes, StoredBlock("RAWa", 1, 1)), "");
  AcquisitionDataComp again("RAWa");
  EXPECT_EQ(read(again, bytes), kSuccess);
  EXPECT_EQ(again.GetFrame(0)[0], MakeRecord(0, 0));
}

TEST_F(BlockFiles, TimeBlockSizeIsReadAndWrittenButNotUsed) {
  Bytes bytes = StoredBlock("RAWa", 1, 1);
  bytes[11] = 99;
  AcquisitionDataComp block("RAWa");
  EXPECT_EQ(read(block, bytes), kSuccess);
  EXPECT_EQ(block.GetTimeBlockSize(), 99);
  EXPECT_EQ(block.GetFrame(0)[0], MakeRecord(0, 0));
  EXPECT_EQ(FirstDifference(written(block), bytes), "");
}

class OldVersion : public BlockFiles, public testing::WithParamInterface<unsigned> {};

TEST_P(OldVersion, HasNoTimeBlockAndIsWrittenBackWithOneAndItsOldNumber) {
  const Bytes frame = StoredFrame(MakeFrame(8, 0));
  ByteString wells;
  for (const auto number : WellNumbers(8)) wells.Short(number);
  AcquisitionDataComp block("RAWa");
  const Bytes old =
      ByteString().Text("RAWa").Long(4 + 16 + 640).Short(GetParam()).Short(8).Raw(wells).Raw(frame);
  EXPECT_EQ(read(block, old), kSuccess);
  EXPECT_EQ(left_, 0U);
  ASSERT_EQ(block.GetFrameCount(), 1);
  EXPECT_EQ(block.GetFrame(0)[7], MakeRecord(0, 7));
  const Bytes expected = ByteString()
                             .Text("RAWa")
                             .Long(4 + 16 + 640)
                             .Short(GetParam())
                             .Short(12)
                             .Zeros(12)
                             .Short(8)
                             .Raw(wells)
                             .Raw(frame);
  EXPECT_EQ(FirstDifference(written(block), expected), "");
  block.Upgrade();
  EXPECT_EQ(FirstDifference(written(block), StoredBlock("RAWa", 8, 1)), "");
}

INSTANTIATE_TEST_SUITE_P(Versions, OldVersion, testing::Values(0U, 1U));

TEST_F(BlockFiles, LaterVersionsReadAsVersion2) {
  Bytes bytes = StoredBlock("RAWa", 1, 1);
  bytes[8] = bytes[9] = 0xFF;
  AcquisitionDataComp block("RAWa");
  EXPECT_EQ(read(block, bytes), kSuccess);
  EXPECT_EQ(block.GetVersion(), 65535);
  EXPECT_EQ(FirstDifference(written(block), bytes), "");
}

TEST_F(BlockFiles, LengthZeroIsABlockWithoutABody) {
  AcquisitionDataComp block("RAWa");
  EXPECT_EQ(read(block, ByteString().Text("RAWa").Long(0)), kSuccess);
  EXPECT_EQ(block.GetWellCount(), 0);
  EXPECT_EQ(block.GetFrameCount(), 0);
}

class LengthField : public BlockFiles,
                    public testing::WithParamInterface<std::pair<std::uint32_t, int>> {};

TEST_P(LengthField, NeverReadsMoreThanThereIs) {
  Bytes bytes = StoredBlock("RAWa", 2, 1);
  SetLongAt(bytes, 4, GetParam().first);
  AcquisitionDataComp block("RAWa");
  EXPECT_EQ(read(block, bytes), GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(Values, LengthField,
                         testing::Values(std::pair{17U, kSuccess}, std::pair{18U, kSuccess},
                                         std::pair{22U + 160, kSuccess},
                                         std::pair{22U + 320, kReadFailed},
                                         std::pair{0x7FFFFFFFU, kReadFailed},
                                         std::pair{0xFFFFFFFFU, kReadFailed}));

TEST_F(BlockFiles, MoreWellsThanTheFileHoldsIsAShortRead) {
  AcquisitionDataComp block("RAWa");
  EXPECT_EQ(
      read(block, ByteString().Text("RAWa").Long(210).Short(2).Short(12).Zeros(12).Short(65535)),
      kReadFailed);
}

TEST_F(BlockFiles, NoWellsAreNoFramesWhateverTheLength) {
  AcquisitionDataComp block("RAWa");
  EXPECT_EQ(
      read(block, ByteString().Text("RAWa").Long(0xFFFFFFFF).Short(2).Short(12).Zeros(12).Short(0)),
      kSuccess);
  EXPECT_EQ(block.GetFrameCount(), 0);
}

TEST_F(BlockFiles, EveryCutIsAShortRead) {
  const Bytes whole = StoredBlock("RAWa", 2, 1);
  for (std::size_t length = 8; length < whole.size(); ++length) {
    AcquisitionDataComp block("RAWa");
    EXPECT_EQ(read(block, Slice(whole, 0, length)), kReadFailed) << length;
  }
}

TEST_F(BlockFiles, FramesThatWereNeverFilledAreWrittenAsZeros) {
  const auto numbers = WellNumbers(1);
  AcquisitionDataComp block("RAWa", numbers.data(), 1);
  EXPECT_TRUE(block.SetWellRecord(1, 0, MakeRecord(0, 0)));
  EXPECT_EQ(block.GetFrameCount(), 1);
  const Bytes bytes = written(block);
  EXPECT_EQ(Slice(bytes, 28, 80), Bytes(80, 0));
}

}  // namespace
}  // namespace vex2::test
