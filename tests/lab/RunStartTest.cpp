#include <gtest/gtest.h>

#include "lab/model/RunStart.h"

using vex2::lab::RunStart;

namespace {

TimeStamp stamp(std::array<std::uint8_t, 6> fields) {
  TimeStamp time;
  std::copy(fields.begin(), fields.end(), time.fields);
  return time;
}

}  // namespace

TEST(RunStart, KeepsTimeOfDayAndZone) {
  const auto start = RunStart::Parse("2026-11-22T08:00:30Z");
  ASSERT_TRUE(start);
  EXPECT_EQ(start->Stamp(), stamp({26, 11, 22, 8, 0, 30}));
  EXPECT_EQ(start->Zone(), "Z");
  EXPECT_EQ(start->Text(), "2026-11-22T08:00:30Z");
  const auto east = RunStart::Parse("2026-11-22T08:00:30+05:30");
  ASSERT_TRUE(east);
  EXPECT_EQ(east->Stamp(), start->Stamp());
  EXPECT_EQ(east->Zone(), "+05:30");
}

TEST(RunStart, EndMayBeOnAnotherDay) {
  EXPECT_EQ(RunStart::Parse("2026-12-31T23:59:59Z")->StampAfter(1999), stamp({27, 1, 1, 0, 0, 0}));
  EXPECT_EQ(RunStart::Parse("2028-02-28T23:00:00Z")->StampAfter(3'600'000),
            stamp({28, 2, 29, 0, 0, 0}));
}

TEST(RunStart, OtherTextsAreRefused) {
  for (const char* text :
       {"", "now", "2026-11-22", "2026-11-22T08:00:00", "2026-11-22 08:00:00Z", "2026-11-22T08:00Z",
        "2026-13-22T08:00:00Z", "2026-02-30T08:00:00Z", "2026-11-22T24:00:00Z",
        "2026-11-22T08:60:00Z", "2026-11-22T08:00:60Z", "1999-11-22T08:00:00Z",
        "2100-11-22T08:00:00Z", "2026-11-22T08:00:00+1:00", "2026-11-22T08:00:00+24:00",
        "2026-11-22T08:00:00z", "2026-11-22T08:00:00ZZ", "2026-11-22T08:00:00.5Z",
        "+026-11-22T08:00:00Z"}) {
    EXPECT_FALSE(RunStart::Parse(text)) << text;
  }
}

TEST(RunStart, NowIsAStart) {
  const RunStart now = RunStart::Now();
  EXPECT_EQ(RunStart::Parse(now.Text()), now);
}
