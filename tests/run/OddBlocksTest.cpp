// Tests data blocks whose parts contradict each other: lengths without frames, frames without well
// records, files that become shorter while they are read.
#include <gtest/gtest.h>

#include <limits>

#include "tests/support/MemoryFiles.h"
#include "tests/support/RunDocument.h"
#include "vex2/container/Status.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::test {
namespace {

constexpr const char* kPath = "/block";

class OddBlock : public testing::Test {
 protected:
  int read(AcquisitionDataComp& block, const Bytes& record) {
    files_.Put(kPath, record);
    CFile file;
    EXPECT_TRUE(file.Open(kPath, CFile::modeRead));
    return block.Read(&file);
  }

  MemoryFiles files_;
};

TEST_F(OddBlock, FrameWithoutRecordsIsZeros) {
  AcquisitionDataComp block("RAWa", MakeFrame(2, 0));
  Vex2FrameData none;
  none.wellCount = 2;
  EXPECT_TRUE(block.SetFrame(1, none));
  ASSERT_EQ(block.GetFrameCount(), 2);
  EXPECT_EQ(block.GetFrame(1)[1], Vex2WellRecord{});
}

TEST_F(OddBlock, DataWithoutAFrameIsAnEmptyBlock) {
  Vex2FrameData frame = MakeFrame(2, 0);
  Vex2AcquisitionData data;
  data.frameCount = 1;
  EXPECT_EQ(AcquisitionDataComp("RAWa", data).GetWellCount(), 0);
  data.frames = &frame;
  data.frameCount = 0;
  EXPECT_EQ(AcquisitionDataComp("RAWa", data).GetWellCount(), 2) << "a frame for the wells alone";
  EXPECT_EQ(AcquisitionDataComp("RAWa", data).GetFrameCount(), 0);
  data.frameCount = 1;
  EXPECT_EQ(AcquisitionDataComp("RAWa", data).GetFrameCount(), 1);
  data.frames = nullptr;
}

TEST_F(OddBlock, WhoseLengthIsFullTakesNoMoreFrames) {
  AcquisitionDataComp block("RAWa");
  ASSERT_EQ(
      read(block, ByteString().Text("RAWa").Long(0xFFFFFFFF).Short(2).Short(12).Zeros(12).Short(0)),
      kSuccess);
  const std::uint16_t well = 1;
  block.SetWellNumbers(&well, 1);
  EXPECT_FALSE(block.SetFrame(0, MakeFrame(1, 0)));
  EXPECT_FALSE(block.SetWellRecord(0, 0, MakeRecord(0, 0)));
  EXPECT_EQ(block.GetLength(), 0xFFFFFFFFU);
}

TEST_F(OddBlock, FramesThatNoFileHasRoomForAreRefused) {
  AcquisitionDataComp block("RAWa", MakeFrame(1, 0));
  for (const int index : {-1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    EXPECT_FALSE(block.SetFrame(index, MakeFrame(1, 0))) << index;
    EXPECT_FALSE(block.SetWellRecord(index, 0, MakeRecord(0, 0))) << index;
    EXPECT_EQ(block.GetFrame(index), nullptr) << index;
  }
  EXPECT_EQ(block.GetFrameCount(), 1);
}

TEST_F(OddBlock, OfTheNewVersionIsUpgradedAlready) {
  AcquisitionDataComp block("RAWa", MakeFrame(1, 0));
  const std::uint32_t length = block.GetLength();
  block.Upgrade();
  EXPECT_EQ(block.GetVersion(), 2);
  EXPECT_EQ(block.GetLength(), length);
}

TEST_F(OddBlock, IsNoCopyOfABlockOfAnotherTag) {
  AcquisitionDataComp block("RAWa");
  block.Assign(AcquisitionDataComp("REPr", MakeFrame(2, 0)));
  EXPECT_EQ(block.GetWellCount(), 0);
}

TEST_F(OddBlock, ThatShrinksWhileItIsReadIsAShortRead) {
  const Bytes whole = StoredBlock("RAWa", 2, 2);
  for (std::size_t length = 8; length < whole.size(); ++length) {
    files_.Put(kPath, whole);
    CFile file;
    ASSERT_TRUE(file.Open(kPath, CFile::modeRead));
    files_.Put(kPath, Slice(whole, 0, length));
    AcquisitionDataComp block("RAWa");
    EXPECT_EQ(block.Read(&file), kReadFailed) << length;
  }
}

TEST(TimeStamp, IsEqualWhereAllFieldsAre) {
  const TimeStamp time = {{1, 2, 3, 4, 5, 6}};
  EXPECT_EQ(time, (TimeStamp{{1, 2, 3, 4, 5, 6}}));
  for (std::size_t field = 0; field < 6; ++field) {
    TimeStamp other = time;
    other.fields[field] = 9;
    EXPECT_NE(time, other);
  }
}

TEST(Vex2FrameData, OfNoWellsHasNoRecords) {
  Vex2FrameData frame = MakeFrame(2, 0);
  frame.Resize(0);
  EXPECT_EQ(frame.records, nullptr);
  EXPECT_EQ(frame.wellCount, 0);
}

}  // namespace
}  // namespace vex2::test
