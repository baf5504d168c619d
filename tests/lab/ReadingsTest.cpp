#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>

#include "lab/model/Readings.h"
#include "lab/record/MeasuredRun.h"
#include "tests/lab/RunDocuments.h"

namespace {

using namespace vex2::lab;
using namespace vex2::test;
using testing::ElementsAre;
using testing::IsEmpty;

class ReadingsTest : public TempFolderTest {
 protected:
  /// Records these rows of a readings file and opens the run.
  RunReader runOf(const std::string& rows) {
    std::ofstream(folder_ / "wells.csv") << "well,sample,target,task,quantity,reporter\n"
                                            "A1,one,,,,\nB2,two,,,,\n";
    std::ofstream(folder_ / "readings.csv")
        << "well,stage,cycle,time_s,temperature_c,fluorescence,channel\n"
        << rows;
    MeasuredRunFiles files;
    files.readings = folder_ / "readings.csv";
    files.wells = folder_ / "wells.csv";
    Record(LoadMeasuredRun(files).plan, path_);
    return RunReader(path_);
  }

  std::string path_ = folder_ / "run.vex";
};

TEST_F(ReadingsTest, AreInRealUnitsByFrameWellAndChannel) {
  const RunReader run = runOf(
      "A1,amplification,1,10,60,-1.5,FAM\nA1,amplification,1,10,60,2,VIC\n"
      "B2,amplification,1,10,60,0.25,FAM\nB2,amplification,1,10,60,NA,VIC\n"
      "A1,melt,1,20.5,65.25,4,FAM\nA1,melt,1,20.5,65.25,5,VIC\n"
      "B2,melt,1,20.5,65.25,NA,FAM\nB2,melt,1,20.5,65.25,7,VIC\n");
  const Readings readings = run.Readings();
  ASSERT_TRUE(readings.Meaning());
  EXPECT_THAT(readings.Meaning()->channels, ElementsAre("FAM", "VIC"));
  EXPECT_EQ(readings.ChannelCount(), 2U);
  EXPECT_THAT(readings.Wells(), ElementsAre(1, 14));
  EXPECT_EQ(readings.FindWell(14), 1U);
  EXPECT_EQ(readings.FindWell(2), std::nullopt);
  EXPECT_EQ(readings.Fluorescence(0, 0), -1.5);
  EXPECT_EQ(readings.Fluorescence(0, 0, 1), 2.0);
  EXPECT_EQ(readings.Fluorescence(0, 1), 0.25);
  EXPECT_EQ(readings.Fluorescence(0, 1, 1), std::nullopt);
  EXPECT_THAT(readings.FluorescenceOf(0),
              ElementsAre(-1.5, 0.25, 4, testing::Truly([](double x) { return std::isnan(x); })));
  EXPECT_THAT(readings.Axis(), ElementsAre(FramePosition{Stage::kAmplification, 1, 60.0, 10.0},
                                           FramePosition{Stage::kMelting, 1, 65.25, 20.5}));
  const Frame frame = run.Frame(1);
  EXPECT_EQ(frame.wells[0].fluorescence, (std::vector<double>{4, 5}));
  EXPECT_TRUE(std::isnan(frame.wells[1].fluorescence[0]));
  EXPECT_EQ(frame.wells[1].fluorescence[1], 7);
}

TEST_F(ReadingsTest, HaveOneChannelWithoutAName) {
  Record(SmallRun(2, 0), path_);
  const Readings readings = RunReader(path_).Readings();
  EXPECT_EQ(readings.ChannelCount(), 1U);
  EXPECT_THAT(readings.Meaning()->channels, IsEmpty());
  EXPECT_EQ(readings.Fluorescence(1, 95),
            readings.Meaning()->scale.Measured(readings.At(1, 95, 0)));
}

TEST_F(ReadingsTest, OfOtherProgramsHaveNoMeaning) {
  ForeignRun foreign(path_, 2);
  foreign.Begin();
  foreign.Append();
  const Readings readings = RunReader(path_).Readings();
  EXPECT_EQ(readings.Meaning(), std::nullopt);
  EXPECT_EQ(readings.ChannelCount(), 0U);
  EXPECT_EQ(readings.Fluorescence(0, 1), std::nullopt);
  EXPECT_TRUE(std::isnan(readings.FluorescenceOf().at(1)));
  EXPECT_EQ(readings.At(0, 1, 31), MakeRecord(0, 1).data[31]);
}

TEST_F(ReadingsTest, ThatTheRecorderDidNotWriteHaveNoMeaning) {
  Record(SmallRun(2, 0), path_);
  Vex2FileManager document;
  ASSERT_EQ(document.ReadFromFile(path_.c_str()), 0);
  const Vex2WellRecord other = MakeRecord(1, 1);
  ASSERT_TRUE(document.SetAcqDataWellRecord(&other, 1, 2, DataRAWa));
  ASSERT_EQ(document.SaveToFile(path_.c_str()), 0);
  const Readings readings = RunReader(path_).Readings();
  EXPECT_TRUE(readings.Fluorescence(1, 0));
  EXPECT_FALSE(readings.Fluorescence(1, 1));
  EXPECT_EQ(readings.At(1, 1, 3), other.data[3]);
}

TEST_F(ReadingsTest, AreOneContiguousMatrix) {
  Record(SmallRun(2, 0), path_);
  const Readings readings = RunReader(path_).Readings();
  const auto all = readings.Values();
  EXPECT_EQ(all.size(), 2U * 96 * 32);
  EXPECT_EQ(readings.Values(1).data(), all.data() + 96 * 32);
  EXPECT_EQ(readings.Values(1, 5).data(), all.data() + (96 + 5) * 32);
  EXPECT_EQ(&readings.Values(1, 5)[3], all.data() + (96 + 5) * 32 + 3);
}

TEST_F(ReadingsTest, RefuseAnIndexBeyondTheCount) {
  Record(SmallRun(2, 0), path_);
  const Readings readings = RunReader(path_).Readings();
  const auto codeOf = [](const auto& work) {
    try {
      static_cast<void>(work());
    } catch (const Error& error) {
      return error.Code();
    }
    return ErrorCode::kSystem;
  };
  EXPECT_EQ(codeOf([&] { return readings.Values(2); }), ErrorCode::kNoSuchFrame);
  EXPECT_EQ(codeOf([&] { return readings.Values(1, 96); }), ErrorCode::kNoSuchWell);
  EXPECT_EQ(codeOf([&] { return readings.At(1, 1, 32); }), ErrorCode::kNoSuchValue);
  EXPECT_EQ(codeOf([&] { return readings.Fluorescence(1, 1, 1); }), ErrorCode::kNoSuchValue);
  EXPECT_EQ(codeOf([&] { return readings.FluorescenceOf(1); }), ErrorCode::kNoSuchValue);
  EXPECT_EQ(codeOf([&] { return Readings().Values(0); }), ErrorCode::kNoSuchFrame);
}

TEST_F(ReadingsTest, StayWhenTheReaderIsGone) {
  Record(SmallRun(2, 0), path_);
  Readings copy;
  {
    const Readings readings = RunReader(path_).Readings();
    copy = readings;
  }
  EXPECT_EQ(copy.FrameCount(), 2U);
  EXPECT_TRUE(copy.Fluorescence(1, 1));
}

}  // namespace
