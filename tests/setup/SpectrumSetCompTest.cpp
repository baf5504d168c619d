// Tests how documents store pure dyes and background.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>

#include "tests/container/Stream.h"
#include "tests/support/DocumentBytes.h"
#include "vex2/container/CSkippedComp.h"
#include "vex2/container/TagFactory.h"
#include "vex2/setup/CCalibrationComp.h"

namespace vex2::test {
namespace {

using namespace std::string_literals;

class Calibration : public StreamTest {
 protected:
  template <typename Component>
  int statusOf(const std::string& record) {
    Component component;
    return component.Read(&Holding(record));
  }
};

std::string headUpToValue(int entries) {
  return "\x01\x02\x03\x04"s + BigEndian(0x0A0B0C0D, 4) +
         BigEndian(static_cast<std::uint64_t>(entries), 2) + BigEndian(0x0E0F, 2) +
         BigEndian(0x10111213, 4);
}

std::string dyeHead(int entries, char reserved = '\0') {
  return headUpToValue(entries) + std::string(4, reserved) + "\x21\x22\x23\x24\x31\x32\x33\x34" +
         std::string(44, reserved);
}

std::string backgroundHead(int entries, char reserved = '\0') {
  return headUpToValue(entries) + "\x21\x22\x23\x24\x31\x32\x33\x34" + std::string(48, reserved);
}

const std::string kDyeEntry =
    "\0\x01\0\x02\0\x03\x04\x05\x03"
    "FAM"
    "\0\x06\0\x07\0\x08\x02\0\0\x80\x3F\0\0\0\x40"s;
const std::string kBackgroundEntry =
    "\0\x01\0\x02\0\x03\0\xBD\x02"
    "bg"
    "\x01\0\0\x80\x3F"s;

template <typename Record>
void fillHead(Record& record) {
  for (std::uint8_t i = 0; i < 4; ++i) {
    record.code[i] = static_cast<std::uint8_t>(0x01 + i);
    record.extra1[i] = static_cast<std::uint8_t>(0x21 + i);
    record.extra2[i] = static_cast<std::uint8_t>(0x31 + i);
  }
  record.setting = 0x0A0B0C0D;
  record.option = 0x0E0F;
  record.value = 0x10111213;
}

void fillSpectrum(vex2::Spectrum& entry, std::string_view name, std::uint8_t values) {
  const float numbers[] = {1, 2};
  entry.key1 = 1;
  entry.key2 = 2;
  entry.dyeIndex = 3;
  entry.SetName(name.data(), static_cast<std::uint8_t>(name.size()));
  entry.SetValues(numbers, values);
}

void fill(Vex2PureDye& dyes) {
  fillHead(dyes);
  dyes.SetEntryCount(2);
  fillSpectrum(dyes.entries[0], "FAM", 2);
  dyes.entries[0].byte1 = 4;
  dyes.entries[0].byte2 = 5;
  dyes.entries[0].param1 = 6;
  dyes.entries[0].param2 = 7;
  dyes.entries[0].param3 = 8;
}

void fill(Vex2BGC& background) {
  fillHead(background);
  background.SetEntryCount(1);
  fillSpectrum(background.entries[0], "bg", 1);
}

TEST_F(Calibration, PureDyesHaveAReservedWordBeforeTheExtraWords) {
  Vex2PureDye dyes;
  fill(dyes);
  CPureDyeComp component(dyes);
  EXPECT_EQ(dyeHead(2).size(), 72U);
  EXPECT_EQ(Written(component), Record("PDYE", dyeHead(2) + kDyeEntry + std::string(16, '\0')));
}

TEST_F(Calibration, BackgroundHasAllReservedWordsAfterTheExtraWords) {
  Vex2BGC background;
  fill(background);
  CBackgroundComp component(background);
  EXPECT_EQ(backgroundHead(1).size(), 72U);
  EXPECT_EQ(Written(component), Record("BKGD", backgroundHead(1) + kBackgroundEntry));
}

TEST_F(Calibration, GivesBackWhatItWasMadeFrom) {
  CPureDyeComp component;
  ASSERT_EQ(component.Read(&Holding(Record("PDYE", dyeHead(1, 'r') + kDyeEntry))), 0);
  Vex2PureDye dyes;
  dyes.SetEntryCount(5);
  component.CopyTo(dyes);
  EXPECT_EQ(dyes.setting, 0x0A0B0C0DU);
  EXPECT_EQ(dyes.option, 0x0E0F);
  EXPECT_EQ(dyes.value, 0x10111213U);
  EXPECT_EQ(dyes.code[3], 4);
  EXPECT_EQ(dyes.extra1[0], 0x21);
  EXPECT_EQ(dyes.extra2[3], 0x34);
  ASSERT_EQ(dyes.entryCount, 1);
  const Vex2DyeSpectrum& entry = dyes.entries[0];
  EXPECT_EQ(entry.key1, 1);
  EXPECT_EQ(entry.key2, 2);
  EXPECT_EQ(entry.dyeIndex, 3);
  EXPECT_EQ(entry.byte1, 4);
  EXPECT_EQ(entry.byte2, 5);
  EXPECT_EQ(std::string(entry.name, entry.nameLength), "FAM");
  EXPECT_EQ(entry.param1, 6);
  EXPECT_EQ(entry.param2, 7);
  EXPECT_EQ(entry.param3, 8);
  ASSERT_EQ(entry.valueCount, 2);
  EXPECT_EQ(entry.values[0], std::bit_cast<std::uint32_t>(1.0F));
  EXPECT_EQ(entry.values[1], std::bit_cast<std::uint32_t>(2.0F));
}

TEST_F(Calibration, KeepsReservedWordsThatWereReadEvenInACopy) {
  const std::string dyes = Record("PDYE", dyeHead(1, 'r') + kDyeEntry);
  CPureDyeComp pureDye;
  ASSERT_EQ(pureDye.Read(&Holding(dyes)), 0);
  EXPECT_EQ(Written(pureDye), dyes);
  const std::string traces = Record("BKGD", backgroundHead(1, 'r') + kBackgroundEntry);
  CBackgroundComp background;
  ASSERT_EQ(background.Read(&Holding(traces)), 0);
  EXPECT_EQ(Written(background), traces);
  std::unique_ptr<CComponent> copy;
  ASSERT_EQ(CloneComponent(pureDye, copy), 1);
  EXPECT_EQ(Written(*copy), dyes);
}

TEST_F(Calibration, ReservedWordsOfAComponentMadeFromARecordAreZero) {
  CBackgroundComp read;
  ASSERT_EQ(read.Read(&Holding(Record("BKGD", backgroundHead(0, 'r')))), 0);
  Vex2BGC record;
  read.CopyTo(record);
  CBackgroundComp made(record);
  EXPECT_EQ(Written(made), Record("BKGD", backgroundHead(0)));
}

TEST_F(Calibration, BackgroundWithoutEntriesIs72Bytes) {
  const Vex2BGC none;
  CBackgroundComp component(none);
  EXPECT_EQ(component.GetLength(), 72U);
  const std::string bytes = Written(component);
  EXPECT_EQ(bytes.size(), 80U);
  CBackgroundComp read;
  ASSERT_EQ(read.Read(&Holding(bytes)), 0);
  EXPECT_EQ(read.GetRecord().entries, nullptr);
  EXPECT_EQ(read.GetRecord().setting, 10U);
}

TEST_F(Calibration, ValuesKeepEveryBit) {
  const std::string entry = kBackgroundEntry.substr(0, 11) + "\x02\x01\0\xA0\x7F\xFF\xFF\xFF\xFF"s;
  const std::string bytes = Record("BKGD", backgroundHead(1) + entry);
  CBackgroundComp read;
  ASSERT_EQ(read.Read(&Holding(bytes)), 0);
  Vex2BGC record;
  read.CopyTo(record);
  CBackgroundComp again(record);
  EXPECT_EQ(Written(again), bytes);
}

TEST_F(Calibration, CutShortAnywhereIsAShortRead) {
  const std::string dyes = Record("PDYE", dyeHead(1) + kDyeEntry);
  for (std::size_t size = 8; size < dyes.size(); ++size) {
    ASSERT_EQ(statusOf<CPureDyeComp>(dyes.substr(0, size)), -100) << size;
  }
  const std::string background = Record("BKGD", backgroundHead(1) + kBackgroundEntry);
  for (std::size_t size = 8; size < background.size(); ++size) {
    ASSERT_EQ(statusOf<CBackgroundComp>(background.substr(0, size)), -100) << size;
  }
}

TEST_F(Calibration, MissingEntriesTakeNoMemory) {
  CPureDyeComp component;
  EXPECT_EQ(component.Read(&Holding(Record("PDYE", dyeHead(65535)))), -100);
  EXPECT_EQ(component.GetRecord().entries, nullptr);
  EXPECT_EQ(statusOf<CBackgroundComp>(Record("BKGD", backgroundHead(65535))), -100);
}

TEST_F(Calibration, MissingNameAndValuesAreAShortRead) {
  const std::string fixed = "\0\x01\0\x02\0\x03\0\xBD"s;
  EXPECT_EQ(statusOf<CBackgroundComp>(Record("BKGD", backgroundHead(1) + fixed + "\xFF name")),
            -100);
  EXPECT_EQ(statusOf<CBackgroundComp>(Record("BKGD", backgroundHead(1) + fixed + "\0\xFF 12"s)),
            -100);
}

TEST_F(Calibration, HoldsPureDyesThenBackground) {
  const Vex2PureDye dyes;
  const Vex2BGC background;
  CCalibrationComp both(&dyes, &background);
  ASSERT_EQ(both.GetChildCount(), 2);
  EXPECT_EQ(both.GetChild(0)->GetTag(), "PDYE");
  EXPECT_EQ(both.GetChild(1)->GetTag(), "BKGD");
  EXPECT_EQ(CCalibrationComp().GetChildCount(), 0);
  EXPECT_EQ(CCalibrationComp(nullptr, &background).Find<CPureDyeComp>(), nullptr);
  EXPECT_TRUE(both.Remove("PDYE"));
  EXPECT_FALSE(both.Remove("PDYE"));
  both.Remove("BKGD");
  both.AddChild(std::make_unique<CSkippedComp>("BKGD", 10));
  EXPECT_EQ(both.Find<CBackgroundComp>(), nullptr);
}

TEST_F(Calibration, AssignFromAnotherKindChangesNothing) {
  Vex2PureDye dyes;
  fill(dyes);
  CPureDyeComp component(dyes);
  component.Assign(CBackgroundComp());
  component.Assign(component);
  EXPECT_EQ(component.GetRecord().entryCount, 2);
}

TEST_F(Calibration, NullFilesAreAStatus) {
  CPureDyeComp component;
  EXPECT_EQ(component.ReadBody(nullptr), -100);
  EXPECT_EQ(component.WriteBody(nullptr), -200);
}

}  // namespace
}  // namespace vex2::test
