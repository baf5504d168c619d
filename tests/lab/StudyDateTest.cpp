#include <gtest/gtest.h>

#include "lab/model/Study.h"

namespace {

using vex2::lab::PlateDateText;

TEST(PlateDate, IsWrittenAsIso8601) {
  EXPECT_EQ(PlateDateText("Mar 05, 2003 02:07 PM"), "2003-03-05T14:07");
  EXPECT_EQ(PlateDateText("Dec 31, 2026 12:00 AM"), "2026-12-31T00:00");
  EXPECT_EQ(PlateDateText("Jan 01, 1999 12:59 PM"), "1999-01-01T12:59");
}

TEST(PlateDate, OtherTextStaysAsItIs) {
  for (const char* text :
       {"", "yesterday", "Mar 05, 2003", "Mar 05, 2003 02:07 PM ", "05.03.2003",
        "Xyz 05, 2003 02:07 PM", "arA 05, 2003 02:07 PM", "Mar 32, 2003 02:07 PM",
        "Mar 05, 2003 13:07 PM", "Mar 05, 2003 02:60 PM", "Mar 05, 2003 02:07 XM"}) {
    EXPECT_EQ(PlateDateText(text), text);
  }
}

}  // namespace
