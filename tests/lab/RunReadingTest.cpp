#include <gtest/gtest.h>

#include "lab/model/RunReading.h"

using namespace vex2::lab;

namespace {

constexpr RunReading kReading = {
    .cycle = 7, .temperature = 5982, .melting = false, .time = 274117, .values = {570}};

}  // namespace

TEST(RunReading, EachPartHasItsPlaceInTheRecord) {
  const Vex2WellRecord record = EncodeReading(kReading, false);
  const std::uint16_t leading[8] = {1, 7, 5982, 0, 570, 4, 11973, 0};
  EXPECT_TRUE(std::equal(std::begin(leading), std::end(leading), record.leading));
  EXPECT_EQ(record.data[0], 570);
  EXPECT_TRUE(std::all_of(record.data + 1, record.data + 36, [](auto v) { return v == 0; }));
}

TEST(RunReading, WhatIsEncodedDecodesAgain) {
  RunReading reading = kReading;
  EXPECT_EQ(DecodeReading(EncodeReading(reading, false)), reading);
  reading = {
      .cycle = 65535, .temperature = 65535, .melting = true, .time = 4294967295U, .values = {0}};
  EXPECT_EQ(DecodeReading(EncodeReading(reading, true)), reading);
}

TEST(RunReading, OnlyTheFirstFrameOfMeltingLooksLikeOne) {
  const auto fifth = [](std::uint16_t value, bool begins) {
    RunReading reading = kReading;
    reading.values[0] = value;
    return EncodeReading(reading, begins).leading[4];
  };
  EXPECT_EQ(fifth(570, true), 65000);
  EXPECT_EQ(fifth(0, false), 1);
  EXPECT_EQ(fifth(65000, false), 64999);
  EXPECT_EQ(fifth(65535, false), 65535);
}

TEST(ShortestQuotient, IsTheNumberThatWasScaled) {
  EXPECT_EQ(ShortestQuotient(59, 100), "0.59");
  EXPECT_EQ(ShortestQuotient(1511, 100), "15.11");
  EXPECT_EQ(ShortestQuotient(274117, 1000), "274.117");
  EXPECT_EQ(ShortestQuotient(540, 100), "5.4");
  EXPECT_EQ(ShortestQuotient(0, 100), "0");
  EXPECT_EQ(ShortestQuotient(4294967295U, 1), "4294967295");
  for (std::uint32_t value = 0; value < 65536; ++value) {
    ASSERT_EQ(std::stod(ShortestQuotient(value, 1000)), value / 1000.0);
  }
}
