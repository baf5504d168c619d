#include <gtest/gtest.h>

#include "vex2/manager/CXErr.h"

namespace {

static_assert(sizeof(CXErr) == 4);

TEST(CXErr, IsZeroUnlessGivenAValue) {
  EXPECT_EQ(CXErr().GetID(), 0);
  EXPECT_EQ(CXErr(-5).GetID(), -5);
}

TEST(CXErr, HalvesAreSigned) {
  const CXErr error(static_cast<std::int32_t>(0x8001FFFEU));
  EXPECT_EQ(error.GetClassID(), -32767);
  EXPECT_EQ(error.GetMsgID(), -2);
}

TEST(CXErr, SettingOneHalfKeepsTheOther) {
  CXErr error(0x00010002);
  error.SetClassID(-1);
  EXPECT_EQ(error.GetClassID(), -1);
  EXPECT_EQ(error.GetMsgID(), 2);
  error.SetMsgID(-3);
  EXPECT_EQ(error.GetClassID(), -1);
  EXPECT_EQ(error.GetMsgID(), -3);
  error.SetClassID(1);
  EXPECT_EQ(error.GetID(), 0x0001FFFD);
}

TEST(CXErr, ComparesWithNumbersAndItsKind) {
  CXErr error;
  error = CXErr(7);
  EXPECT_TRUE(error == 7);
  EXPECT_FALSE(error == 8);
  EXPECT_TRUE(error != 8);
  EXPECT_FALSE(error != 7);
  EXPECT_TRUE(error == CXErr(7));
  EXPECT_FALSE(error == CXErr(8));
}

}  // namespace
