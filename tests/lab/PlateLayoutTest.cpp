#include <gtest/gtest.h>

#include "lab/model/PlateLayout.h"

using namespace vex2::lab;

TEST(WellName, WellsAreCountedByRows) {
  EXPECT_EQ(WellName(1, 12), "A1");
  EXPECT_EQ(WellName(12, 12), "A12");
  EXPECT_EQ(WellName(13, 12), "B1");
  EXPECT_EQ(WellName(384, 24), "P24");
  EXPECT_EQ(WellName(26 * 48 + 1, 48), "AA1");
  EXPECT_EQ(WellName(7, 0), "7");
  EXPECT_EQ(WellName(0, 12), "0");
}

TEST(WellName, NamesLeadBackToTheirNumbers) {
  for (std::uint32_t number = 1; number <= 32 * 48; ++number) {
    ASSERT_EQ(WellNumber(WellName(number, 48), 32, 48), number);
  }
  for (const char* name : {"", "A", "1", "A0", "A13", "I1", "a1", "A01", "A1 ", "A-1", "ZZZZZZZ1",
                           "A99999999999999999999"}) {
    EXPECT_EQ(WellNumber(name, 8, 12), std::nullopt) << name;
  }
}

TEST(WellName, IsFoundAsPeopleWriteIt) {
  for (const char* name : {"A1", "a1", "A01", "a001"}) {
    EXPECT_EQ(kPlate96.FindAsWritten(name), 1) << name;
  }
  EXPECT_EQ(kPlate96.FindAsWritten("h12"), 96);
  EXPECT_EQ(kPlate96.FindAsWritten("A10"), 10);
  for (const char* name : {"", "A", "A0", "A00", "A013", "1A", "A 1"}) {
    EXPECT_EQ(kPlate96.FindAsWritten(name), std::nullopt) << name;
  }
}
