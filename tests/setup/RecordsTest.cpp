// Tests the records that callers pass to the library: defaults, ownership, and how texts and arrays
// are set.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <type_traits>

#include "vex2/setup/Vex2BGC.h"
#include "vex2/setup/Vex2Detector.h"
#include "vex2/setup/Vex2DyeInfo.h"
#include "vex2/setup/Vex2PlateSetup.h"
#include "vex2/setup/Vex2PureDye.h"

namespace {

// Records that own arrays cannot be copied by accident; records that can be copied are copied deep.
static_assert(!std::is_copy_constructible_v<Vex2PlateSetup>);
static_assert(!std::is_copy_assignable_v<Vex2PlateSetup>);
static_assert(!std::is_copy_constructible_v<Vex2WellSetup>);
static_assert(!std::is_copy_assignable_v<Vex2WellSetup>);
static_assert(!std::is_copy_constructible_v<Vex2WellDetector>);
static_assert(!std::is_copy_constructible_v<Vex2PureDye>);
static_assert(!std::is_copy_assignable_v<Vex2BGC>);
static_assert(std::is_copy_constructible_v<Vex2Detector>);
static_assert(std::is_copy_constructible_v<Vex2DyeSpectrum>);

TEST(WellText, OfANewRecordIsNull) {
  const Vex2WellSetup well;
  EXPECT_EQ(well.name, nullptr);
  EXPECT_EQ(well.nameLength, 0);
  EXPECT_EQ(well.description, nullptr);
  EXPECT_EQ(well.descriptionLength, 0);
  const Vex2WellDetector detector;
  EXPECT_EQ(detector.detectorName, nullptr);
  EXPECT_EQ(detector.task, nullptr);
}

TEST(WellText, IsEndedByAZeroByte) {
  Vex2WellSetup well;
  well.SetName("waterfall", 5);
  EXPECT_STREQ(well.name, "water");
  EXPECT_EQ(well.nameLength, 5);
}

TEST(WellText, ThatIsShorterTakesTheOldBuffer) {
  Vex2WellDetector detector;
  detector.SetTask("UNKN", 4);
  const char* buffer = detector.task;
  detector.SetTask("NTC", 3);
  EXPECT_EQ(detector.task, buffer);
  EXPECT_STREQ(detector.task, "NTC");
  detector.SetTask("IPC+", 4);
  EXPECT_STREQ(detector.task, "IPC+");
  EXPECT_EQ(detector.taskLength, 4);
}

TEST(WellText, ThatIsEmptyNeedsNoBufferAndKeepsAnExistingOne) {
  Vex2WellSetup well;
  well.SetName("", 0);
  EXPECT_EQ(well.name, nullptr);
  well.SetName("a", 1);
  well.SetName(nullptr, 0);
  EXPECT_STREQ(well.name, "");
  EXPECT_EQ(well.nameLength, 0);
}

TEST(WellText, WithoutCharactersIsZeros) {
  Vex2WellDetector detector;
  detector.SetDetectorName(nullptr, 3);
  EXPECT_EQ(detector.detectorNameLength, 3);
  EXPECT_EQ(std::memcmp(detector.detectorName, "\0\0\0", 4), 0);
}

TEST(WellText, OfANegativeLengthIsHeldAndLeavesTheCharacters) {
  Vex2WellSetup well;
  well.SetDescription("abc", 3);
  well.SetDescription("x", -1);
  EXPECT_EQ(well.descriptionLength, -1);
  EXPECT_STREQ(well.description, "abc");
  well.SetDescription("", 0);
  EXPECT_STREQ(well.description, "");
  Vex2WellSetup other;
  other.SetName("x", std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(other.name, nullptr);
}

TEST(WellText, MayBePartOfTheOldText) {
  Vex2WellSetup well;
  well.SetName("sample 7", 8);
  well.SetName(well.name + 7, 1);
  EXPECT_STREQ(well.name, "7");
}

TEST(WellDetector, IsUsedUnlessSaidOtherwise) {
  const Vex2WellDetector detector;
  EXPECT_TRUE(detector.used);
  EXPECT_EQ(detector.quantity, 0);
}

TEST(WellSetup, ResetMakesItNewAndReleasesItsDetectors) {
  Vex2WellSetup well;
  well.coord1 = 1;
  well.coord2 = 2;
  well.flag = false;
  well.SetName("n", 1);
  well.SetDescription("d", 1);
  well.detectors.AddTail(new Vex2WellDetector);
  well.Reset();
  EXPECT_EQ(well.coord1, 0);
  EXPECT_EQ(well.coord2, 0);
  EXPECT_TRUE(well.flag);
  EXPECT_EQ(well.name, nullptr);
  EXPECT_EQ(well.description, nullptr);
  EXPECT_EQ(well.descriptionLength, 0);
  EXPECT_TRUE(well.detectors.IsEmpty());
}

TEST(PlateSetupRecord, ResizingKeepsNothingAndToZeroChangesNothing) {
  Vex2PlateSetup setup;
  EXPECT_EQ(setup.cells, nullptr);
  EXPECT_EQ(setup.count, 0);
  setup.Resize(2);
  setup.cells[0].SetName("a", 1);
  setup.Resize(0);
  EXPECT_EQ(setup.count, 2);
  EXPECT_STREQ(setup.cells[0].name, "a");
  setup.Resize(3);
  EXPECT_EQ(setup.count, 3);
  EXPECT_EQ(setup.cells[0].name, nullptr);
  setup.Clear();
  EXPECT_EQ(setup.cells, nullptr);
  EXPECT_EQ(setup.count, 0);
}

TEST(Detector, HasItsDefaultsNewAndCleared) {
  Vex2Detector detector;
  const auto expectNew = [&] {
    EXPECT_TRUE(detector.name.IsEmpty());
    EXPECT_EQ(detector.color[2], 0);
    EXPECT_EQ(detector.dateCreated, 0);
    EXPECT_EQ(detector.dateModified, 0);
    EXPECT_EQ(detector.baselineStart, 6);
    EXPECT_EQ(detector.baselineEnd, 15);
    EXPECT_EQ(detector.threshold, 0.2F);
    EXPECT_EQ(detector.analysisFlags, 0);
    EXPECT_EQ(detector.autoBaseline, 0);
    EXPECT_EQ(detector.autoThreshold, 0);
  };
  expectNew();
  detector.name = "x";
  detector.color[2] = 9;
  detector.baselineStart = 1;
  detector.threshold = 1;
  detector.Clear();
  expectNew();
}

TEST(SpectrumSet, HasItsDefaults) {
  const Vex2PureDye dyes;
  EXPECT_EQ(dyes.setting, 10U);
  EXPECT_EQ(dyes.entryCount, 0);
  EXPECT_EQ(dyes.option, 0);
  EXPECT_EQ(dyes.value, 0U);
  EXPECT_EQ(dyes.entries, nullptr);
  EXPECT_EQ(Vex2BackgroundSpectrum().limit, 189);
  EXPECT_EQ(Vex2DyeSpectrum().param3, 0);
}

TEST(SpectrumSet, SettingTheCountMakesNewEntries) {
  Vex2BGC background;
  background.SetEntryCount(2);
  background.entries[1].limit = 7;
  background.SetEntryCount(2);
  EXPECT_EQ(background.entries[1].limit, 189);
  background.SetEntryCount(0);
  EXPECT_EQ(background.entries, nullptr);
  EXPECT_EQ(background.entryCount, 0);
}

TEST(Spectrum, CopiesHaveTheirOwnNameAndValues) {
  Vex2DyeSpectrum dye;
  const std::uint32_t values[] = {1, 2, 3};
  dye.SetName("FAM", 3);
  dye.SetValues(values, 3);
  dye.byte2 = 4;
  dye.param3 = 5;
  Vex2DyeSpectrum copy(dye);
  dye.name[0] = 'X';
  dye.values[2] = 9;
  EXPECT_EQ(std::string(copy.name, copy.nameLength), "FAM");
  EXPECT_EQ(copy.values[2], 3U);
  EXPECT_EQ(copy.byte2, 4);
  EXPECT_EQ(copy.param3, 5);
  copy = copy;
  EXPECT_EQ(copy.valueCount, 3);
  copy = Vex2DyeSpectrum();
  EXPECT_EQ(copy.name, nullptr);
  EXPECT_EQ(copy.values, nullptr);
}

TEST(DyeInfo, IsEmptyAndOfNoDyeAtFirst) {
  const Vex2DyeInfo info;
  EXPECT_TRUE(info.name.IsEmpty());
  EXPECT_EQ(info.index, -1);
  for (const std::uint32_t value : info.values) EXPECT_EQ(value, 0U);
  EXPECT_STREQ(info.GetRuntimeClass()->name, "Vex2DyeInfo");
  EXPECT_NE(Vex2DyeInfo::ClassRecord()->CreateObject(), nullptr);
}

}  // namespace
