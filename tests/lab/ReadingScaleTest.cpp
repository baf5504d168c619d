// Tests how readings become 16-bit numbers, and which scale is chosen.

#include <gtest/gtest.h>

#include <cmath>

#include "lab/model/ReadingScale.h"
#include "lab/record/ScaleChoice.h"

using namespace vex2::lab;

namespace {

// The largest change of a reading when it is stored; -1 if a reading does not fit.
double largestChange(const ReadingScale& scale, const std::vector<double>& readings) {
  double largest = 0;
  for (const double reading : readings) {
    const auto stored = scale.Store(reading);
    if (!stored) return -1;
    largest = std::max(largest, std::abs(scale.Measured(*stored) - reading));
  }
  return largest;
}

std::string chosen(const std::vector<double>& readings) {
  const ReadingScale scale = ChooseScale(readings, {});
  return scale.ScaleText() + (scale.HasOffset() ? " from " + scale.OffsetText() : "");
}

}  // namespace

TEST(ReadingScale, IsReadAsItIsWritten) {
  for (const char* text : {"1", "1000", "1000000", "1/2", "1000/3", "500000000/91557"}) {
    const auto scale = ReadingScale::Parse(text);
    ASSERT_TRUE(scale) << text;
    EXPECT_EQ(scale->ScaleText(), text);
  }
  EXPECT_EQ(ReadingScale::Parse("0.5")->ScaleText(), "1/2");
  EXPECT_EQ(ReadingScale::Parse("2/4")->ScaleText(), "1/2");
  EXPECT_EQ(ReadingScale::Parse("10")->WithOffset(*ReadingScale::ParseOffset("-12.5")).OffsetText(),
            "-12.5");
}

TEST(ReadingScale, TextsThatAreNoneAreRefused) {
  for (const char* text : {"", "0", "-1", "1/0", "0/1", "x", "1x", "1/", "/1", "nan", "inf", "1e3",
                           "1/2/3", "99999999999999999999", "1000000000001"}) {
    EXPECT_FALSE(ReadingScale::Parse(text)) << text;
  }
  for (const char* text : {"", "x", "nan", "inf", "1e13", "1.2345678901234567"}) {
    EXPECT_FALSE(ReadingScale::ParseOffset(text)) << text;
  }
}

TEST(ReadingScale, StoredNumbersOfEachScaleComeBack) {
  for (const char* text : {"1", "7", "1000", "1/2", "1000/3", "3/7", "1000000", "1/1000000000"}) {
    for (const char* offset : {"0", "-12.5", "60000", "-0.001"}) {
      const auto scale = ReadingScale::Parse(text)->WithOffset(*ReadingScale::ParseOffset(offset));
      for (unsigned stored = 0; stored < 65536; ++stored) {
        const auto number = static_cast<std::uint16_t>(stored);
        ASSERT_EQ(scale.Store(scale.Measured(number)), number) << text << " " << offset;
      }
    }
  }
}

TEST(ReadingScale, WholeScalesStoreAsTheyAlwaysDid) {
  for (const unsigned factor : {1U, 7U, 10U, 1000U, 1000000U}) {
    const ReadingScale scale(factor);
    for (int i = 0; i < 60000; i += 7) {
      const double reading = i * 1.0005 / factor;
      if (std::round(reading * factor) > 65535) break;
      ASSERT_EQ(scale.Store(reading), std::round(reading * factor)) << reading;
    }
    ASSERT_EQ(scale.Measured(12345), 12345.0 / factor);
  }
}

TEST(ReadingScale, WhatDoesNotFitIsNotStored) {
  EXPECT_FALSE(ReadingScale(1000).Store(65.536));
  EXPECT_TRUE(ReadingScale(1000).Store(65.5354));
  EXPECT_FALSE(ReadingScale(1000).Store(-0.001));
  EXPECT_FALSE(ReadingScale(1).Store(1e300));
  EXPECT_EQ(ReadingScale(1000).WithOffset({-1, 0}).Store(-1), 0);
}

TEST(ScaleChoice, ReadingsThatAPowerOfTenKeepsGetTheOneNextTo1000) {
  EXPECT_EQ(chosen({0.313, 0.317}), "1000");
  EXPECT_EQ(chosen({5, 7}), "1000");
  EXPECT_EQ(chosen({0.313, 65.535}), "1000");
  EXPECT_EQ(chosen({0.25, 655.35}), "100");
  EXPECT_EQ(chosen({6553.5}), "10");
  EXPECT_EQ(chosen({65535}), "1");
  EXPECT_EQ(chosen({0.3133, 0.317}), "10000");
  EXPECT_EQ(chosen({0.000001}), "1000000");
  EXPECT_EQ(chosen({70000, 100010}), "1/10");
  EXPECT_EQ(chosen({0}), "1000");
  EXPECT_EQ(chosen({}), "1000");
}

TEST(ScaleChoice, ACommonStepKeepsWhatNoPowerOfTenDoes) {
  EXPECT_EQ(chosen({0.002, 131.07}), "500");
  EXPECT_EQ(chosen({2, 131070}), "1/2");
  EXPECT_EQ(chosen({0.0003, 0.3, 15}), "10000/3");
  EXPECT_EQ(chosen({0.25, 16383.75}), "4");
}

TEST(ScaleChoice, AnOffsetServesWhereNothingElseKeepsTheReadings) {
  EXPECT_EQ(chosen({-0.5, 0.313}), "1000 from -0.5");
  EXPECT_EQ(chosen({-3, -2}), "1000 from -3");
  EXPECT_EQ(chosen({0.313, 65.536}), "1000 from 0.313");
  EXPECT_EQ(chosen({1000000.001, 1000000.002}), "1000 from 1000000.001");
}

TEST(ScaleChoice, OtherReadingsLoseAsLittleAsTheirRangeAllows) {
  std::vector<double> readings;
  for (int i = 0; i < 1000; ++i) readings.push_back(12 * std::sqrt(i / 1000.0));
  const ReadingScale scale = ChooseScale(readings, {});
  EXPECT_FALSE(scale.HasOffset());
  const double change = largestChange(scale, readings);
  EXPECT_GT(change, 0);
  EXPECT_LE(change, readings.back() / 65535 / 2 * 1.0001);
  EXPECT_EQ(scale.ScaleText(), ChooseScale(readings, {}).ScaleText());
}

TEST(ScaleChoice, TheFinestStepLeavesTheLargestNumberFree) {
  for (const double range : {1.2, 12.0, 65.536, 0.0314159}) {
    std::vector<double> readings;
    for (int i = 0; i <= 1000; ++i) readings.push_back(range * std::sqrt(i / 1000.0));
    const auto stored = ChooseScale(readings, {}).Store(readings.back());
    EXPECT_LE(stored, 65534) << range;
    EXPECT_GE(stored, 65530) << range;
  }
}

TEST(ScaleChoice, OneNoisyReadingDoesNotCostTheOthersTheirs) {
  const std::vector<double> readings = {0.1 + 0.2, 0.313, 12.5};
  const ReadingScale scale = ChooseScale(readings, {});
  EXPECT_EQ(scale.ScaleText(), "1000");
  EXPECT_LT(largestChange(scale, readings), 1e-15);
}

TEST(ScaleChoice, ExactReadingsAreKeptExactly) {
  // Any decimal step between the readings and any first reading, if the range is at most 65535
  // steps.
  for (const double step : {0.001, 0.002, 0.005, 0.0003, 0.7, 3.0, 125.0, 0.00001}) {
    for (const double first : {0.0, -12.5, 60000.0, -1.0}) {
      std::vector<double> readings;
      for (int i = 0; i < 65536; i += 511) {
        readings.push_back(std::stod(PlainText(std::round((first + i * step) * 1e5) / 1e5)));
      }
      EXPECT_EQ(largestChange(ChooseScale(readings, {}), readings), 0) << step << " " << first;
    }
  }
}

TEST(ScaleChoice, AGivenOffsetIsKept) {
  const ReadingScale scale = ChooseScale({-0.5, 0.313}, DecimalNumber{-1, 0});
  EXPECT_EQ(scale.OffsetText(), "-1");
  EXPECT_EQ(scale.ScaleText(), "1000");
}

TEST(ScaleChoiceAhead, LeavesRoomForSixteenTimesTheLargestReading) {
  const auto ahead = [](const std::vector<double>& readings) {
    const ReadingScale scale = ChooseScaleAhead(readings, {});
    return scale.ScaleText() + " from " + scale.OffsetText();
  };
  EXPECT_EQ(ahead({0.313, 4}), "1000 from 0");
  EXPECT_EQ(ahead({0.313, 4.1}), "100 from 0");
  EXPECT_EQ(ahead({600}), "1 from 0");
  EXPECT_EQ(ahead({5000}), "1/10 from 0");
  EXPECT_EQ(ahead({-0.5, 1}), "1000 from -32.767");
  EXPECT_EQ(ahead({-5000}), "1/10 from -327670");
  EXPECT_EQ(ahead({}), "1000 from 0");
}
