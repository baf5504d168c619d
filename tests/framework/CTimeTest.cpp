#include <gtest/gtest.h>
#include <time.h>

#include <clocale>
#include <cstdlib>
#include <limits>
#include <string>

#include "tests/support/RecordingHost.h"
#include "vex2/framework/CTime.h"

namespace vex2::test {
namespace {

constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr const char* kDatePattern = "%b %d, %Y %I:%M %p";

class CTimeTest : public testing::Test {
 protected:
  void SetUp() override {
    if (const char* zone = std::getenv("TZ")) zone_ = zone;
  }
  void TearDown() override {
    zone_.empty() ? unsetenv("TZ") : setenv("TZ", zone_.c_str(), 1);
    tzset();
    std::setlocale(LC_ALL, "C");
  }

 private:
  std::string zone_;
};

TEST_F(CTimeTest, FormatsInLocalTime) {
  const CTime time(1015517100);  // 2002-03-07 16:05:00 UTC
  setenv("TZ", "UTC0", 1);
  EXPECT_EQ(time.Format(kDatePattern), "Mar 07, 2002 04:05 PM");
  setenv("TZ", "EST5", 1);
  EXPECT_EQ(time.Format(kDatePattern), "Mar 07, 2002 11:05 AM");
}

TEST_F(CTimeTest, FormatsMidnightAndNoonOnTheTwelveHourClock) {
  setenv("TZ", "UTC0", 1);
  EXPECT_EQ(CTime(0).Format(kDatePattern), "Jan 01, 1970 12:00 AM");
  EXPECT_EQ(CTime(12 * 3600).Format(kDatePattern), "Jan 01, 1970 12:00 PM");
  EXPECT_EQ(CTime(-60).Format(kDatePattern), "Dec 31, 1969 11:59 PM");
}

TEST_F(CTimeTest, FormatsEnglishNamesInEveryLocale) {
  setenv("TZ", "UTC0", 1);
  bool another = false;
  for (const char* locale : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8"}) {
    another = another || std::setlocale(LC_ALL, locale) != nullptr;
  }
  if (!another) GTEST_SKIP() << "the system has no German or French locale";
  EXPECT_EQ(CTime(1020000000).Format("%B %b %A %p"), "April Apr Sunday PM");
}

TEST_F(CTimeTest, FormatOfNothingIsEmpty) {
  EXPECT_TRUE(CTime(0).Format(nullptr).IsEmpty());
  EXPECT_TRUE(CTime(0).Format("").IsEmpty());
}

TEST_F(CTimeTest, FormatTakesLongPatternsAndRefusesEndlessOnes) {
  setenv("TZ", "UTC0", 1);
  std::string pattern;
  std::string expected;
  for (int i = 0; i < 1000; ++i) {
    pattern += "%F ";
    expected += "1970-01-01 ";
  }
  EXPECT_EQ(CTime(0).Format(pattern.c_str()), expected.c_str());
  EXPECT_TRUE(CTime(0).Format("%999999999Y").IsEmpty());
}

TEST_F(CTimeTest, FormatOfAYearPastTheCalendarIsEmpty) {
  EXPECT_TRUE(CTime(kLargest).Format("%Y").IsEmpty());
}

TEST_F(CTimeTest, CurrentTimeIsTheHosts) {
  RecordingHost host;
  host.now = CTime(1234567890);
  EXPECT_EQ(CTime::GetCurrentTime().GetTime(), 1234567890);
}

TEST_F(CTimeTest, CurrentTimeIsTheSystemsWithoutAHost) {
  const std::int64_t before = ::time(nullptr);
  const std::int64_t now = CTime::GetCurrentTime().GetTime();
  EXPECT_GE(now, before);
  EXPECT_LE(now, before + 5);
}

TEST_F(CTimeTest, CountsTheSecondsBetweenTwo) {
  EXPECT_EQ((CTime(100) - CTime(40)).GetTotalSeconds(), 60);
  EXPECT_EQ((CTime(40) - CTime(100)).GetTotalSeconds(), -60);
  EXPECT_EQ((CTime(kLargest) - CTime(-2)).GetTotalSeconds(), kLargest);
  EXPECT_EQ((CTime(-2) - CTime(kLargest)).GetTotalSeconds(), -kLargest - 1);
}

TEST_F(CTimeTest, ComparesBySecond) {
  EXPECT_EQ(CTime(), CTime(0));
  EXPECT_NE(CTime(1), CTime(2));
  EXPECT_LT(CTime(-1), CTime(0));
  EXPECT_GE(CTime(2), CTime(2));
}

}  // namespace
}  // namespace vex2::test
