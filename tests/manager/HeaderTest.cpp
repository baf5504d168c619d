#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "tests/support/DocumentBytes.h"
#include "tests/support/SilentHost.h"
#include "tests/support/TempFolder.h"
#include "vex2/manager/Vex2FileManager.h"
#include "vex2/manager/Vex2HeaderData.h"

namespace {

using vex2::test::BigEndian;
using vex2::test::Bytes;
using vex2::test::FirstDifference;
using vex2::test::HeaderBytes;
using vex2::test::ReadBytes;
using vex2::test::Record;
using vex2::test::ToBytes;
using vex2::test::WriteBytes;
using namespace std::string_literals;

// Hosts are compiled with these layouts, so the sizes must not change.
static_assert(sizeof(Vex2HeaderData) == 80);
static_assert(offsetof(Vex2HeaderData, rows) == 20);
static_assert(offsetof(Vex2HeaderData, kindMarker) == 60);
static_assert(offsetof(Vex2HeaderData, acquisitionDataOffset) == 68);
static_assert(offsetof(Vex2HeaderData, usage) == 72);
static_assert(sizeof(Vex2WellRecord) == 88);
static_assert(sizeof(TimeStamp) == 6);
static_assert(sizeof(Vex2FrameData) == 2 * sizeof(void*));
static_assert(sizeof(Vex2AcquisitionData) == 2 * sizeof(void*));
static_assert(sizeof(ThermocycleProgram) == 2 * sizeof(void*));

// Gives the tests access to the protected operations of the manager.
struct Opened : Vex2FileManager {
  using Vex2FileManager::ReadHeaderDataHelper;
  using Vex2FileManager::UpdateHeaderOffsets;
  using Vex2FileManager::WriteHeaderDataHelper;
};

template <typename Member>
int slotOf(Member member) {
  std::intptr_t parts[2];
  static_assert(sizeof member == sizeof parts);
  std::memcpy(parts, &member, sizeof parts);
  return static_cast<int>(parts[0] / static_cast<int>(sizeof(void*)));
}

template <std::size_t Size>
std::string text(const char (&field)[Size]) {
  return {field, Size};
}

class Header : public vex2::test::TempFolderTest {
 protected:
  void open(const std::string& bytes) {
    WriteBytes(path_, ToBytes(bytes));
    ASSERT_EQ(manager_.SafeOpen(path_.c_str(), 0, 0), 1);
  }

  vex2::test::SilentHost host_;
  std::string path_ = folder_ / "run.vex";
  Opened manager_;
};

TEST_F(Header, TheSixVirtualOperationsFollowThoseOfTheFile) {
  const int first = slotOf(&Vex2FileManager::WriteComponentFile);
  EXPECT_EQ(first, slotOf(&CFile::GetFilePath) + 1);
  EXPECT_EQ(slotOf(&Vex2FileManager::ReadComponentFile), first + 1);
  EXPECT_EQ(slotOf(&Opened::UpdateHeaderOffsets), first + 2);
  EXPECT_EQ(slotOf<int (Vex2FileManager::*)(CFile*)>(&Vex2FileManager::ReadHeaderData), first + 3);
  EXPECT_EQ(
      slotOf<int (Vex2FileManager::*)(Vex2HeaderData&, CFile*)>(&Vex2FileManager::ReadHeaderData),
      first + 4);
  EXPECT_EQ(slotOf(&Vex2FileManager::WriteHeaderData), first + 5);
}

TEST_F(Header, ANewOneDescribesAPlateOf96Wells) {
  const Vex2HeaderData header;
  EXPECT_EQ(text(header.magic), "Vex2");
  EXPECT_EQ(header.formatA, 2);
  EXPECT_EQ(header.formatB, 2);
  EXPECT_EQ(text(header.assayCode), "AbsQ");
  EXPECT_EQ(text(header.runCode), "RtRn");
  EXPECT_EQ(text(header.plateTypeCode), "p9C ");
  EXPECT_EQ(header.columns, 12);
  EXPECT_EQ(header.thermocycleOffset, 0U);
  EXPECT_EQ(header.flagG, 0);
  EXPECT_EQ(text(header.text), std::string(31, ' '));
  EXPECT_EQ(text(header.kindMarker), "Kest");
  EXPECT_EQ(text(header.acquisitionStatus), "ZERO");
  EXPECT_EQ(header.acquisitionDataOffset, 0U);
  ASSERT_EQ(header.rows, 8);
  for (int row = 0; row < 8; ++row) EXPECT_EQ(header.usage[row], 4095U);
}

TEST_F(Header, ResetEmptiesEveryField) {
  Vex2HeaderData header;
  header.thermocycleOffset = header.acquisitionDataOffset = 7;
  header.flagG = 7;
  header.text[30] = 'x';
  header.Reset();
  EXPECT_EQ(text(header.magic) + text(header.assayCode) + text(header.runCode) +
                text(header.plateTypeCode) + text(header.text) + text(header.kindMarker) +
                text(header.acquisitionStatus),
            std::string(55, ' '));
  EXPECT_EQ(header.formatA + header.formatB + header.rows + header.columns + header.flagG, 0);
  EXPECT_EQ(header.thermocycleOffset + header.acquisitionDataOffset, 0U);
  EXPECT_EQ(header.usage, nullptr);
}

TEST_F(Header, CopiesAreWholeAndIndependent) {
  Vex2HeaderData header;
  header.SetRows(3);
  header.usage[2] = 9;
  header.text[0] = 'T';
  header.flagG = 200;
  Vex2HeaderData copy(header);
  header.usage[2] = 10;
  EXPECT_EQ(copy.rows, 3);
  EXPECT_EQ(copy.usage[2], 9U);
  EXPECT_EQ(copy.usage[1], 4095U);
  EXPECT_EQ(copy.text[0], 'T');
  EXPECT_EQ(copy.flagG, 200);
  copy = header;
  EXPECT_EQ(copy.usage[2], 10U);
  const Vex2HeaderData& same = copy;
  copy = same;
  EXPECT_EQ(copy.usage[2], 10U);
  header.Reset();
  copy = header;
  EXPECT_EQ(copy.usage, nullptr);
}

TEST_F(Header, CopyOfRowsWithoutATableHasDefaultMasks) {
  Vex2HeaderData header;
  header.SetRows(0);
  header.rows = 3;
  const Vex2HeaderData copy(header);
  ASSERT_EQ(copy.rows, 3);
  ASSERT_NE(copy.usage, nullptr);
  EXPECT_EQ(std::vector(copy.usage, copy.usage + 3), std::vector<std::uint32_t>(3, 4095));
  EXPECT_EQ(manager_.SaveHeader(path_.c_str(), header), 0);
  EXPECT_EQ(FirstDifference(ReadBytes(path_), ToBytes(HeaderBytes(3))), "");
}

TEST_F(Header, RowsSetByHandAreNotReadPastTheTable) {
  for (const int rows : {0, 1, 7, 9, 238, 65535}) {
    Vex2HeaderData header;
    header.usage[0] = 1;
    header.usage[7] = 2;
    header.rows = static_cast<std::uint16_t>(rows);
    Vex2HeaderData copy;
    copy = header;
    ASSERT_EQ(copy.rows, rows);
    for (int row = 0; row < rows; ++row) {
      ASSERT_EQ(copy.usage[row], row == 0 ? 1U : row == 7 ? 2U : 4095U) << row << " of " << rows;
    }
  }
}

TEST_F(Header, TableThatTheHostMadeIsCopiedWhole) {
  Vex2HeaderData header;
  delete[] header.usage;
  header.usage = new std::uint32_t[20];
  header.rows = 20;
  for (std::uint32_t row = 0; row < 20; ++row) header.usage[row] = row;
  const Vex2HeaderData copy(header);
  ASSERT_EQ(copy.rows, 20);
  for (std::uint32_t row = 0; row < 20; ++row) EXPECT_EQ(copy.usage[row], row);
}

TEST_F(Header, RowsSetByHandAreWrittenWithDefaultMasks) {
  struct ByHand : Opened {
    void SetRows(std::uint16_t rows) { header_.rows = rows; }
  } manager;
  manager.SetRows(16);
  ASSERT_EQ(manager.SafeOpen(path_.c_str(), 1, 0), 1);
  EXPECT_EQ(manager.WriteHeaderData(nullptr), 0);
  manager.Close();
  EXPECT_EQ(FirstDifference(ReadBytes(path_), ToBytes(HeaderBytes(16))), "");
  bool* usage = nullptr;
  ASSERT_TRUE(manager.GetUsageArray(usage));
  EXPECT_TRUE(std::all_of(usage, usage + 16 * 12, [](bool used) { return used; }));
  delete[] usage;
}

TEST_F(Header, ManagersReportRowsAndColumns) {
  EXPECT_EQ(manager_.GetHeaderRows(), 8);
  EXPECT_EQ(manager_.GetHeaderCols(), 12);
  EXPECT_EQ(manager_.GetHeaderBytes(), 1024);
  manager_.Reset();
  EXPECT_EQ(manager_.GetHeaderRows(), 0);
  EXPECT_EQ(manager_.GetHeaderCols(), 0);
  EXPECT_EQ(manager_.GetHeaderBytes(), 1024);
}

TEST_F(Header, EveryFieldIsReadFromItsOffset) {
  const std::string bytes =
      "Vex2\x01\x02\x03\x04"
      "asayrun1plat" +
      BigEndian(2, 2) + BigEndian(0x0506, 2) + BigEndian(0x0708090A, 4) + "\xF0" +
      "text of thirty-one characters.." + "kindstat" + BigEndian(0x0B0C0D0E, 4) +
      BigEndian(0x80000001, 4) + BigEndian(5, 4);
  open(bytes + std::string(2000, 'x'));
  ASSERT_EQ(manager_.ReadHeaderData(nullptr), 0);
  EXPECT_EQ(manager_.GetPosition(), 1024U);
  const Vex2HeaderData& header = manager_.GetHeaderData();
  EXPECT_EQ(header.formatA, 0x0102);
  EXPECT_EQ(header.formatB, 0x0304);
  EXPECT_EQ(text(header.assayCode), "asay");
  EXPECT_EQ(text(header.runCode), "run1");
  EXPECT_EQ(text(header.plateTypeCode), "plat");
  EXPECT_EQ(header.rows, 2);
  EXPECT_EQ(header.columns, 0x0506);
  EXPECT_EQ(header.thermocycleOffset, 0x0708090AU);
  EXPECT_EQ(header.flagG, 0xF0);
  EXPECT_EQ(text(header.text), "text of thirty-one characters..");
  EXPECT_EQ(text(header.kindMarker), "kind");
  EXPECT_EQ(text(header.acquisitionStatus), "stat");
  EXPECT_EQ(header.acquisitionDataOffset, 0x0B0C0D0EU);
  EXPECT_EQ(header.usage[0], 0x80000001U);
  EXPECT_EQ(header.usage[1], 5U);
}

TEST_F(Header, ReadingEndsAt1024WhateverTheRows) {
  for (const int rows : {0, 8, 16, 238}) {
    open(HeaderBytes(rows) + "next");
    ASSERT_EQ(manager_.ReadHeaderData(nullptr), 0);
    EXPECT_EQ(manager_.GetHeaderRows(), rows);
    EXPECT_EQ(manager_.GetPosition(), 1024U) << rows;
  }
  open(HeaderBytes(300) + "next");
  ASSERT_EQ(manager_.ReadHeaderData(nullptr), 0);
  EXPECT_EQ(manager_.GetPosition(), 72U + 4 * 300) << "a table past the header is not stepped back";
}

TEST_F(Header, ATableThatTheFileCannotFillKeepsItsDefaults) {
  open(HeaderBytes(8).substr(0, 20) + BigEndian(65535, 2) + HeaderBytes(8).substr(22));
  ASSERT_EQ(manager_.ReadHeaderData(nullptr), 0);
  EXPECT_EQ(manager_.GetHeaderRows(), 65535);
  EXPECT_EQ(manager_.GetHeaderData().usage[65534], 4095U);
}

TEST_F(Header, FieldsThatTheFileCutsOffKeepTheirValues) {
  const std::string bytes = HeaderBytes().replace(4, 8, "\1\2\3\4RelQ"s);
  open(bytes.substr(0, 7));
  Vex2HeaderData header;
  ASSERT_EQ(manager_.ReadHeaderData(header, nullptr), 0);
  EXPECT_EQ(header.formatA, 0x102);
  EXPECT_EQ(header.formatB, 2) << "a number is read whole or not at all";
  EXPECT_EQ(text(header.assayCode), "AbsQ");
  open(bytes.substr(0, 10));
  ASSERT_EQ(manager_.ReadHeaderData(header, nullptr), 0);
  EXPECT_EQ(header.formatB, 0x304);
  EXPECT_EQ(text(header.assayCode), "ResQ") << "a text is read as far as it goes";
}

TEST_F(Header, IsReadIntoTheCallersRecordToo) {
  open(HeaderBytes(16));
  Vex2HeaderData header;
  EXPECT_EQ(manager_.ReadHeaderData(header, nullptr), 0);
  EXPECT_EQ(header.rows, 16);
  EXPECT_EQ(manager_.GetHeaderRows(), 8) << "the manager's own stays";
}

TEST_F(Header, IsWrittenAtTheBeginAndDropsWhatFollows) {
  for (const int rows : {0, 8, 238}) {
    WriteBytes(path_, Bytes(5000, 'x'));
    ASSERT_EQ(manager_.SafeOpen(path_.c_str(), 1, 1), 1);
    Vex2HeaderData header;
    header.SetRows(static_cast<std::uint16_t>(rows));
    manager_.SetHeaderData(header);
    EXPECT_EQ(manager_.WriteHeaderData(nullptr), 0);
    manager_.Close();
    EXPECT_EQ(FirstDifference(ReadBytes(path_), ToBytes(HeaderBytes(rows))), "") << rows;
  }
}

TEST_F(Header, GoesToTheManagersOwnFileWhateverIsGiven) {
  CFile other;
  ASSERT_TRUE(other.Open((folder_ / "other").c_str(), CFile::modeWrite | CFile::modeCreate));
  EXPECT_EQ(manager_.WriteHeaderData(&other), -200);
  ASSERT_EQ(manager_.SafeOpen(path_.c_str(), 1, 0), 1);
  EXPECT_EQ(manager_.WriteHeaderData(&other), 0);
  manager_.Close();
  other.Close();
  EXPECT_EQ(ReadBytes(path_).size(), 1024U);
  EXPECT_TRUE(ReadBytes(folder_ / "other").empty());
}

TEST_F(Header, IsOfTheManagersOwnFileWhereNoneIsGiven) {
  ASSERT_EQ(manager_.SafeOpen(path_.c_str(), 1, 0), 1);
  std::uint32_t bytes = 0;
  EXPECT_EQ(manager_.WriteHeaderDataHelper(bytes, nullptr), 0);
  manager_.Close();
  EXPECT_EQ(bytes, 72U + 4 * 8);
  EXPECT_EQ(ReadBytes(path_), ToBytes(HeaderBytes().substr(0, bytes)));
  open(HeaderBytes(16));
  Vex2HeaderData header;
  EXPECT_EQ(manager_.ReadHeaderDataHelper(header, nullptr), 0);
  EXPECT_EQ(header.rows, 16);
}

TEST_F(Header, WithMoreRowsThanItHoldsIsCutTo1024Bytes) {
  Vex2HeaderData header;
  header.SetRows(65535);
  EXPECT_EQ(manager_.SaveHeader(path_.c_str(), header), 0);
  EXPECT_EQ(ReadBytes(path_).size(), 1024U);
  EXPECT_EQ(manager_.ReadFromFile(path_.c_str()), 0);
  EXPECT_EQ(manager_.GetHeaderRows(), 65535);
}

TEST_F(Header, FullSaveStoresTheOffsetsPastTheRecords) {
  const std::string program = Record("TPro", "steps");
  const std::string block =
      Record("RAWa", "\0\2\0\x0c"s + std::string(12, '\1') + "\0\1\0\x09"s + std::string(80, 'r'));
  WriteBytes(path_, ToBytes(HeaderBytes() + program + Record("NAME", "n") + block));
  ASSERT_EQ(manager_.ReadFromFile(path_.c_str()), 0);
  ASSERT_EQ(manager_.GetAllComponentCount(), 3);
  ASSERT_EQ(manager_.SaveToFile(path_.c_str()), 0);
  const Bytes saved = ReadBytes(path_);
  const auto word = [&](std::size_t at) {
    return std::string(saved.begin() + static_cast<std::ptrdiff_t>(at),
                       saved.begin() + static_cast<std::ptrdiff_t>(at + 4));
  };
  EXPECT_EQ(word(24), BigEndian(1024 + program.size(), 4));
  EXPECT_EQ(word(68), BigEndian(saved.size(), 4));
  EXPECT_EQ(manager_.GetHeaderData().thermocycleOffset, 1024 + program.size());
  EXPECT_EQ(manager_.GetHeaderData().acquisitionDataOffset, saved.size());
}

TEST_F(Header, OtherRecordsDoNotChangeTheOffsets) {
  ASSERT_EQ(manager_.SafeOpen(path_.c_str(), 1, 0), 1);
  ASSERT_EQ(manager_.WriteHeaderData(nullptr), 0);
  manager_.SeekToEnd();
  manager_.UpdateHeaderOffsets(CComponent("REPr"));
  EXPECT_EQ(manager_.GetHeaderData().acquisitionDataOffset, 0U);
  manager_.UpdateHeaderOffsets(CComponent("RAWa"));
  EXPECT_EQ(manager_.GetHeaderData().acquisitionDataOffset, 1024U);
  EXPECT_EQ(manager_.GetPosition(), manager_.GetLength());
}

TEST_F(Header, MarkersTellTheKindOfDocument) {
  const auto marked = [](const std::string& marker) {
    return HeaderBytes().replace(60, 4, marker);
  };
  open(marked("Blue"));
  EXPECT_TRUE(manager_.IsVex2Format());
  EXPECT_TRUE(manager_.IsBlueLightSpecialFile());
  EXPECT_FALSE(manager_.IsKestorFile());
  open(marked("Kest"));
  EXPECT_FALSE(manager_.IsBlueLightSpecialFile());
  EXPECT_TRUE(manager_.IsKestorFile());
  open(marked("blue"));
  EXPECT_TRUE(manager_.IsVex2Format());
  EXPECT_FALSE(manager_.IsBlueLightSpecialFile());
  open("VEX2" + marked("Blue").substr(4));
  EXPECT_FALSE(manager_.IsVex2Format());
  EXPECT_FALSE(manager_.IsBlueLightSpecialFile());
  open("Vex2 and no marker");
  EXPECT_TRUE(manager_.IsVex2Format());
  EXPECT_FALSE(manager_.IsKestorFile());
}

TEST_F(Header, MarkersOfAClosedOrUnreadableFileAreNone) {
  EXPECT_FALSE(manager_.IsVex2Format());
  EXPECT_FALSE(manager_.IsBlueLightSpecialFile());
  EXPECT_FALSE(manager_.IsKestorFile());
  EXPECT_EQ(manager_.ReadHeaderData(nullptr), -100);
  WriteBytes(path_, ToBytes(HeaderBytes()));
  ASSERT_EQ(manager_.SafeOpen(path_.c_str(), 1, 1), 1);
  EXPECT_FALSE(manager_.IsVex2Format()) << "open for writing only";
  EXPECT_FALSE(manager_.IsKestorFile());
  EXPECT_EQ(manager_.ReadHeaderData(nullptr), -100);
  EXPECT_TRUE(manager_.IsOpen());
}

}  // namespace
