#include <gtest/gtest.h>

#include "tests/support/MemoryFiles.h"
#include "tests/support/RunDocument.h"
#include "vex2/format/DataBlockHead.h"

namespace vex2::test {
namespace {

constexpr const char* kBlockFile = "/block";
constexpr std::int64_t kHead = 8;  // tag and length

class DataBlockHeads : public testing::Test {
 protected:
  CFile& open(const Bytes& record) {
    files_.Put(kBlockFile, record);
    EXPECT_TRUE(file_.Open(kBlockFile, CFile::modeRead));
    file_.Seek(kHead, CFile::begin);
    return file_;
  }

  MemoryFiles files_;
  CFile file_;
};

TEST(FrameGeometry, CountsFramesByTheBodyLength) {
  EXPECT_EQ(FrameSize(96), 7680U);
  EXPECT_EQ(FramesOffset(96), 210U);
  EXPECT_EQ(FrameCount(7890, 96), 1U);
  EXPECT_EQ(FrameCount(7889, 96), 1U) << "the well numbers vanish in the division";
  EXPECT_EQ(WholeFrames(7889, 96), 0U);
  EXPECT_EQ(FrameCount(17, 96), 0U);
  EXPECT_EQ(FrameCount(1000, 0), 0U);
}

TEST_F(DataBlockHeads, ReaderStopsAtTheWellNumbers) {
  CFile& file = open(StoredBlock("RAWa", 3, 1));
  DataBlockHead head;
  ASSERT_TRUE(ReadDataBlockHead(file, TimeBlock::kAsWritten, head));
  EXPECT_EQ(head.version, 2);
  EXPECT_EQ(head.timeBlockSize, 12);
  EXPECT_EQ(head.wells, 3);
  std::vector<std::uint16_t> wells;
  ASSERT_TRUE(ReadWellNumbers(file, head.wells, wells));
  EXPECT_EQ(wells, WellNumbers(3));
  EXPECT_EQ(file.GetPosition(), kHead + FramesOffset(3));
}

TEST_F(DataBlockHeads, BlockOfVersionOneHasNoTimes) {
  const Bytes old = ByteString().Text("RAWa").Long(6).Short(1).Short(1).Short(7);
  DataBlockHead head;
  ASSERT_TRUE(ReadDataBlockHead(open(old), TimeBlock::kAsWritten, head));
  EXPECT_EQ(head.version, 1);
  EXPECT_EQ(head.wells, 1);
}

TEST_F(DataBlockHeads, StatedTimeBlockSizeIsSteppedOverInEveryVersion) {
  const Bytes odd = ByteString().Text("RAWa").Long(99).Short(1).Short(3).Zeros(3).Short(5);
  DataBlockHead head;
  ASSERT_TRUE(ReadDataBlockHead(open(odd), TimeBlock::kAsStated, head));
  EXPECT_EQ(head.timeBlockSize, 3);
  EXPECT_EQ(head.wells, 5);
}

TEST_F(DataBlockHeads, FileThatEndsWithinTheHeadIsRefusedAtEveryLength) {
  const Bytes whole = StoredBlock("RAWa", 2, 0);
  const std::size_t fixed = kHead + kBlockFixedSize;
  for (std::size_t length = kHead; length < fixed; ++length) {
    DataBlockHead head;
    EXPECT_FALSE(ReadDataBlockHead(open(Slice(whole, 0, length)), TimeBlock::kAsWritten, head))
        << length;
  }
}

TEST_F(DataBlockHeads, WellNumbersAreNotAllocatedForAFalseCount) {
  const Bytes record = ByteString().Text("RAWa").Long(18).Short(1);
  CFile& file = open(record);
  std::vector<std::uint16_t> wells = {1};
  EXPECT_FALSE(ReadWellNumbers(file, 65535, wells));
  EXPECT_EQ(wells.capacity(), 1U);
  EXPECT_EQ(file.GetRemaining(), 0U);
}

}  // namespace
}  // namespace vex2::test
