#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "lab/picture/GrowingCurves.h"
#include "lab/record/RunFollower.h"
#include "tests/lab/RunDocuments.h"

namespace {

using namespace vex2::lab;
using namespace vex2::test;

class GrowingCurvesTest : public TempFolderTest {
 protected:
  // The curves after the first `frames` frames of the run.
  Scene after(std::size_t frames) const {
    RunFollower follower(path_);
    GrowingCurves curves;
    for (std::size_t i = 0; i < frames; ++i) {
      const auto frame = follower.Next(std::chrono::milliseconds(0));
      if (!frame) throw std::runtime_error("the run has fewer frames");
      curves.Add(*frame);
    }
    return curves.Build(RunReader(path_), follower.Channels());
  }

  const std::string path_ = folder_ / "run.vex";
};

TEST_F(GrowingCurvesTest, HaveAPointForEachFrameThatCame) {
  Record(SmallRun(12, 3), path_);
  const Readings readings = RunReader(path_).Readings();
  const Scene scene = after(7);
  ASSERT_EQ(scene.series.size(), 96U);
  EXPECT_EQ(scene.legend.groups.size(), 8U);
  EXPECT_EQ(scene.x.label, "cycle");
  for (std::size_t well = 0; well < scene.series.size(); ++well) {
    ASSERT_EQ(scene.series[well].points.size(), 7U);
    EXPECT_EQ(scene.series[well].points[6].x, 7);
    EXPECT_EQ(scene.series[well].points[6].y, readings.Fluorescence(6, well));
  }
}

TEST_F(GrowingCurvesTest, AreThoseOfTheStageOfTheLastFrame) {
  Record(SmallRun(12, 3), path_);
  const Scene scene = after(14);
  EXPECT_EQ(scene.x.label, "temperature, °C");
  ASSERT_EQ(scene.series.size(), 96U);
  EXPECT_EQ(scene.series[0].points.size(), 2U);
  EXPECT_GT(scene.x.low, 30);
}

TEST_F(GrowingCurvesTest, AxisOfCyclesGrowsInSteps) {
  Record(SmallRun(45, 0), path_);
  EXPECT_EQ(after(1).x.high, 40);
  EXPECT_EQ(after(40).x.high, 40);
  EXPECT_EQ(after(41).x.high, 50);
}

TEST_F(GrowingCurvesTest, OfOtherRecordersShowStoredValues) {
  ForeignRun foreign(path_, 4);
  foreign.Begin();
  foreign.Append();
  foreign.Append();
  const Scene scene = after(2);
  EXPECT_EQ(scene.y.label, "stored value");
  EXPECT_EQ(scene.x.label, "frame");
  ASSERT_EQ(scene.series.size(), 4U);
  EXPECT_EQ(scene.series[0].points.size(), 2U);
}

TEST_F(GrowingCurvesTest, LeaveOutReadingsThatAreMissing) {
  GrowingCurves curves;
  Record(SmallRun(1, 0), path_);
  for (std::uint64_t i = 0; i < 3; ++i) {
    const double reading = i == 1 ? std::numeric_limits<double>::quiet_NaN() : 5.0;
    curves.Add({.index = i,
                .position = {},
                .wells = {{.well = 1, .leading = {}, .values = {}, .fluorescence = {reading}}}});
  }
  const Scene scene = curves.Build(RunReader(path_), {});
  ASSERT_EQ(scene.series.size(), 1U);
  EXPECT_EQ(scene.series[0].points.size(), 2U);
  EXPECT_EQ(scene.series[0].points[1].x, 3);
}

TEST_F(GrowingCurvesTest, WithoutFramesHaveNoSeries) {
  Record(SmallRun(1, 0), path_);
  EXPECT_TRUE(GrowingCurves().Build(RunReader(path_), {}).series.empty());
}

}  // namespace
