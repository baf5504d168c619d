#include <gtest/gtest.h>

#include <limits>

#include "vex2/framework/CTimeSpan.h"

namespace {

TEST(CTimeSpan, SplitsIntoDaysHoursMinutesAndSeconds) {
  const CTimeSpan span(2, 23, 59, 58);
  EXPECT_EQ(span.GetTotalSeconds(), 259198);
  EXPECT_EQ(span.GetDays(), 2);
  EXPECT_EQ(span.GetHours(), 23);
  EXPECT_EQ(span.GetMinutes(), 59);
  EXPECT_EQ(span.GetSeconds(), 58);
}

TEST(CTimeSpan, FormatsElapsedTimesForTheTrace) {
  constexpr const char* kPattern = "days: %D, hours: %H, mins: %M, secs: %S\n";
  EXPECT_EQ(CTimeSpan().Format(kPattern), "days: 0, hours: 00, mins: 00, secs: 00\n");
  EXPECT_EQ(CTimeSpan(3, 4, 5, 6).Format(kPattern), "days: 3, hours: 04, mins: 05, secs: 06\n");
  EXPECT_EQ(CTimeSpan(123, 23, 59, 59).Format(kPattern),
            "days: 123, hours: 23, mins: 59, secs: 59\n");
}

TEST(CTimeSpan, FormatKeepsWhatItDoesNotKnow) {
  const CTimeSpan span(61);
  EXPECT_EQ(span.Format("100%% %M%S %Q %"), "100% 0101 %Q %");
  EXPECT_EQ(span.Format("%%D"), "%D");
  EXPECT_EQ(span.Format("%"), "%");
  EXPECT_TRUE(span.Format("").IsEmpty());
  EXPECT_TRUE(span.Format(nullptr).IsEmpty());
}

TEST(CTimeSpan, PartsOfABackwardSpanAreNegative) {
  const CTimeSpan span(-90061);
  EXPECT_EQ(span.GetDays(), -1);
  EXPECT_EQ(span.GetHours(), -1);
  EXPECT_EQ(span.GetMinutes(), -1);
  EXPECT_EQ(span.GetSeconds(), -1);
  EXPECT_LT(span, CTimeSpan(0));
}

TEST(CTimeSpan, HoldsTheLongestSpan) {
  const CTimeSpan span(std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(span.GetDays(), -106751991167300);
  EXPECT_EQ(span.Format("%D %H:%M:%S"), "-106751991167300 -15:-30:-8");
}

}  // namespace
