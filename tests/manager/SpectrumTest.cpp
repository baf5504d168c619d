// Tests the readings of one well in one frame, and the rates of a background document.
#include <gtest/gtest.h>

#include <cstring>
#include <numeric>

#include "tests/support/RecordingHost.h"
#include "tests/support/RunDocument.h"

namespace vex2::test {
namespace {

class SpectrumTest : public testing::Test {
 protected:
  SpectrumTest() {
    auto numbers = WellNumbers(4);
    document_.InitAcqDataWellNumberArray(numbers.data(), 4, DataRAWa);
  }
  static void setAssay(Vex2FileManager& document, const char* code) {
    Vex2HeaderData header = document.GetHeaderData();
    std::memcpy(header.assayCode, code, sizeof header.assayCode);
    document.SetHeaderData(header);
  }
  // Sets the record of well 2 in frame 0: leading values from 100 on, data values `data`.
  void setRecord(const std::vector<std::uint16_t>& data) {
    Vex2WellRecord record;
    std::iota(std::begin(record.leading), std::end(record.leading), std::uint16_t{100});
    std::copy(data.begin(), data.end(), record.data);
    ASSERT_TRUE(document_.SetAcqDataWellRecord(&record, 0, 2, DataRAWa));
  }
  // Sets readings, factors, and other values where the rates will be.
  void setBackgroundRecord() {
    std::vector<std::uint16_t> data;
    for (int group = 0; group < 4; ++group) data.insert(data.end(), {100, 200, 400});
    for (const auto factor : std::initializer_list<std::uint16_t>{5, 6, 7, 9})
      data.insert(data.end(), {factor, factor, factor});
    data.insert(data.end(), {1, 1, 1, 1, 77});
    setRecord(data);
  }

  RecordingHost host_;
  Vex2FileManager document_;
};

TEST_F(SpectrumTest, HoldsTheReadingsAndTheWellValue) {
  std::vector<std::uint16_t> data(36);
  std::iota(data.begin(), data.end(), std::uint16_t{65500});
  setRecord(data);
  KestorSpectrum spectrum(40);
  std::fill_n(spectrum.values, 40, 9U);
  spectrum.well = 2;
  EXPECT_TRUE(document_.LoadSpectrum(&spectrum, nullptr));
  EXPECT_EQ(spectrum.failed, 0);
  EXPECT_EQ(spectrum.wellValue, 100);
  for (std::uint32_t i = 0; i < 36; ++i) EXPECT_EQ(spectrum.values[i], 65500 + i) << i;
  for (int i = 36; i < 40; ++i) EXPECT_EQ(spectrum.values[i], 0U) << i;
  EXPECT_TRUE(host_.settingQueries.empty());
}

TEST_F(SpectrumTest, OfFewerValuesTakesTheFirstReadings) {
  std::vector<std::uint16_t> data(36);
  std::iota(data.begin(), data.end(), std::uint16_t{1});
  setRecord(data);
  KestorSpectrum spectrum(20);
  spectrum.well = 2;
  EXPECT_TRUE(document_.LoadSpectrum(&spectrum, nullptr));
  EXPECT_EQ(spectrum.values[19], 20U);
  KestorSpectrum none;
  none.well = 2;
  EXPECT_TRUE(document_.LoadSpectrum(&none, nullptr));
  EXPECT_EQ(none.wellValue, 100);
}

TEST_F(SpectrumTest, OfANegativeCountTakesNoReadings) {
  setRecord({1, 2, 3});
  KestorSpectrum spectrum(36);
  spectrum.well = 2;
  spectrum.valueCount = -1;
  EXPECT_TRUE(document_.LoadSpectrum(&spectrum, nullptr));
  EXPECT_EQ(spectrum.wellValue, 100);
  EXPECT_EQ(spectrum.values[0], 0U);
}

TEST_F(SpectrumTest, ThatIsMissingIsMarkedAndKeepsItsValues) {
  setRecord({1, 2, 3});
  KestorSpectrum spectrum(36);
  spectrum.values[0] = 5;
  for (const auto& [frame, well] : {std::pair(1, 2), std::pair(0, 9), std::pair(-1, 2)}) {
    spectrum.failed = 0;
    spectrum.frameIndex = frame;
    spectrum.well = well;
    EXPECT_FALSE(document_.LoadSpectrum(&spectrum, nullptr));
    EXPECT_EQ(spectrum.failed, 1);
    EXPECT_EQ(spectrum.values[0], 5U);
  }
  EXPECT_FALSE(document_.LoadSpectrum(nullptr, nullptr));
}

TEST_F(SpectrumTest, OfAMissingPlateIsThatOfTheDocument) {
  setRecord({7});
  document_.SetFilePath("C:\\runs\\plate.vex");
  Vex2FileManager study;
  ASSERT_TRUE(study.AddRQPlate(&document_, ""));
  KestorSpectrum spectrum(36);
  spectrum.well = 2;
  EXPECT_TRUE(study.LoadSpectrum(&spectrum, "plate"));
  EXPECT_EQ(spectrum.values[0], 7U);
  EXPECT_FALSE(study.LoadSpectrum(&spectrum, "other")) << "the study itself has no readings";
  EXPECT_TRUE(document_.LoadSpectrum(&spectrum, "other"));
}

TEST_F(SpectrumTest, OfABackgroundDocumentHasTheRatesOfItsGroups) {
  setBackgroundRecord();
  setAssay(document_, "BGND");
  KestorSpectrum spectrum(36);
  spectrum.well = 2;
  EXPECT_TRUE(document_.LoadSpectrum(&spectrum, nullptr));
  // With equal factors the line goes through the origin, and the rate is the factor. The fraction
  // is cut off, so a rounding error can make the rate 1 smaller.
  const std::uint32_t factors[] = {5, 6, 7, 9};
  for (int group = 0; group < 4; ++group) {
    EXPECT_NEAR(spectrum.values[24 + group], factors[group], 1) << group;
  }
  EXPECT_EQ(spectrum.values[0], 100U);
  EXPECT_EQ(spectrum.values[12], 5U);
  EXPECT_EQ(spectrum.values[28], 77U);
  const RecordingHost::SettingQuery asked{true, "Software\\Orbanet Scientific\\Vex2",
                                          "Blue LED Array Illumination"};
  EXPECT_EQ(host_.settingQueries, std::vector{asked});
}

TEST_F(SpectrumTest, ConversionNeedsTwentyEightValues) {
  setBackgroundRecord();
  setAssay(document_, "BGND");
  KestorSpectrum spectrum(27);
  spectrum.well = 2;
  EXPECT_TRUE(document_.LoadSpectrum(&spectrum, nullptr));
  EXPECT_EQ(spectrum.values[24], 1U);
}

TEST_F(SpectrumTest, KindOfTheDocumentDecidesAndNotThatOfThePlate) {
  setBackgroundRecord();
  document_.SetFilePath("C:\\runs\\plate.vex");
  setAssay(document_, "BGND");
  Vex2FileManager study;
  ASSERT_TRUE(study.AddRQPlate(&document_, ""));
  KestorSpectrum spectrum(36);
  spectrum.well = 2;
  EXPECT_TRUE(study.LoadSpectrum(&spectrum, "plate"));
  EXPECT_EQ(spectrum.values[24], 1U);
  setAssay(study, "BGND");
  EXPECT_TRUE(study.LoadSpectrum(&spectrum, "plate"));
  EXPECT_NEAR(spectrum.values[24], 5, 1);
}

TEST_F(SpectrumTest, RateThatIsTooLargeIsTheLargestNumber) {
  setAssay(document_, "BGND");
  setRecord({0, 10, 20, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 2});
  KestorSpectrum spectrum(36);
  spectrum.well = 2;
  EXPECT_TRUE(document_.LoadSpectrum(&spectrum, nullptr));
  EXPECT_EQ(spectrum.values[24], 4294967295U);
}

}  // namespace
}  // namespace vex2::test
