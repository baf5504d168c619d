#include <gtest/gtest.h>

#include "vex2/framework/CPtrArray.h"

namespace {

class CPtrArrayTest : public testing::Test {
 protected:
  int value_ = 0;
  void* const entry_ = &value_;
  CPtrArray array_;
};

TEST_F(CPtrArrayTest, NewEntriesAreNull) {
  array_.SetSize(96);
  EXPECT_EQ(array_.GetSize(), 96);
  for (int i = 0; i < 96; ++i) EXPECT_EQ(array_.GetAt(i), nullptr);
}

TEST_F(CPtrArrayTest, EntriesThatWereCutOffComeBackNull) {
  array_.SetSize(4);
  array_.SetAt(3, entry_);
  array_.SetSize(3);
  array_.SetSize(4);
  EXPECT_EQ(array_.GetAt(3), nullptr);
}

TEST_F(CPtrArrayTest, ReadsOutOfRangeGiveNull) {
  array_.SetSize(2);
  EXPECT_EQ(array_.GetAt(2), nullptr);
  EXPECT_EQ(array_.GetAt(-1), nullptr);
  EXPECT_EQ(array_[2], nullptr);
  EXPECT_EQ(CPtrArray().GetAt(0), nullptr);
}

TEST_F(CPtrArrayTest, WritesOutOfRangeDoNothing) {
  array_.SetSize(2);
  array_.SetAt(2, entry_);
  array_.SetAt(-1, entry_);
  array_[2] = entry_;
  EXPECT_EQ(array_.GetSize(), 2);
  EXPECT_EQ(array_.GetAt(0), nullptr);
  EXPECT_EQ(array_.GetAt(1), nullptr);
}

TEST_F(CPtrArrayTest, SubscriptReadsAndWrites) {
  array_.SetSize(2);
  array_[1] = entry_;
  array_[0] = array_[1];
  const CPtrArray& constant = array_;
  EXPECT_EQ(constant[0], entry_);
  EXPECT_EQ(constant[1], entry_);
}

TEST_F(CPtrArrayTest, AddAppends) {
  EXPECT_EQ(array_.Add(entry_), 0);
  EXPECT_EQ(array_.Add(nullptr), 1);
  EXPECT_EQ(array_.GetSize(), 2);
  EXPECT_EQ(array_.GetAt(0), entry_);
  array_.RemoveAll();
  EXPECT_EQ(array_.GetSize(), 0);
  EXPECT_EQ(array_.Add(entry_), 0);
}

TEST_F(CPtrArrayTest, NegativeSizeDoesNothing) {
  array_.SetSize(3);
  array_.SetSize(-1);
  EXPECT_EQ(array_.GetSize(), 3);
}

TEST_F(CPtrArrayTest, GrowsByAnEighthBetweenFourAnd1024) {
  const struct {
    int size;
    int capacityAfterOneMore;
  } cases[] = {{8, 12}, {39, 43}, {40, 45}, {96, 108}, {384, 432}, {8191, 9214}, {100000, 101024}};
  for (const auto& [size, capacityAfterOneMore] : cases) {
    CPtrArray array;
    array.SetSize(size);
    ASSERT_EQ(array.GetCapacity(), size);
    array.SetSize(size + 1);
    EXPECT_EQ(array.GetCapacity(), capacityAfterOneMore) << "from " << size;
  }
}

TEST_F(CPtrArrayTest, GrowsByTheStepThatWasSet) {
  array_.SetSize(96, 10);
  array_.SetSize(97);
  EXPECT_EQ(array_.GetCapacity(), 106);
  array_.SetSize(106);
  EXPECT_EQ(array_.GetCapacity(), 106);
  array_.SetSize(107, 0);
  EXPECT_EQ(array_.GetCapacity(), 119) << "106 / 8 = 13 more";
}

TEST_F(CPtrArrayTest, GrowsFurtherThanItsStepWhenAsked) {
  array_.SetSize(10, 5);
  array_.SetSize(100);
  EXPECT_EQ(array_.GetCapacity(), 100);
}

}  // namespace
