#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "lab/Error.h"
#include "lab/model/PlateChange.h"

namespace {

using namespace vex2::lab;
using testing::ElementsAre;
using testing::IsEmpty;

WellRow row(unsigned short well, const char* sample) {
  WellRow row;
  row.well = well;
  row.sample = sample;
  return row;
}

TEST(PlateChange, ChangedWellsAreThoseWithOtherRows) {
  const PlateContents before{kPlate96, {row(1, "a"), row(2, "b"), row(4, "d"), row(4, "e")}};
  const PlateContents after{kPlate96, {row(1, "a"), row(3, "c"), row(4, "e"), row(4, "d")}};
  EXPECT_THAT(ChangedWells(before, after), ElementsAre(2, 3, 4));
  EXPECT_THAT(ChangedWells(before, before), IsEmpty());
}

TEST(PlateChange, RowsStayInTheWellsOfTheirNames) {
  const PlateContents small{kPlate96, {row(13, "b1")}};
  const PlateContents large = PlacedOn(kPlate384, small, "wells.csv");
  EXPECT_EQ(large.rows.front().well, 25);  // B1 of 24 columns
  EXPECT_EQ(large.plate.WellCount(), 384U);
  const PlateContents outside{kPlate384, {row(384, "p24")}};
  EXPECT_THROW(PlacedOn(kPlate96, outside, "wells.csv"), Error);
}

}  // namespace
