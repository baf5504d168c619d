// Tests the plate setup of a document, documents with only a setup, and the wells in use.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <memory>

#include "tests/support/FaultyFileSystem.h"
#include "tests/support/Files.h"
#include "tests/support/RunDocument.h"
#include "tests/support/TempFolder.h"
#include "vex2/setup/CPlateSetupComp.h"

namespace vex2::test {
namespace {

void fill(Vex2PlateSetup& setup, std::uint16_t wells) {
  setup.Resize(wells);
  for (std::uint16_t i = 0; i < wells; ++i) {
    Vex2WellSetup& cell = setup.cells[i];
    cell.coord1 = i;
    cell.SetName("sample", 6);
    cell.SetDescription("kept in the file", 16);
    auto detector = std::make_unique<Vex2WellDetector>();
    detector->SetDetectorName("MYC", 3);
    detector->quantity = 0.25F;
    cell.detectors.AddTail(detector.release());
  }
}

class PlateSetupOfADocument : public TempFolderTest {
 protected:
  void addProgram() {
    ThermocycleProgram program;
    program.length = 3;
    program.Allocate();
    std::memcpy(program.data, "abc", 3);
    EXPECT_EQ(document_.ReplaceThermocycleProgram(&program), kSuccess);
  }

  const std::string path_ = folder_ / "setup.vex";
  OpenedManager document_;
};

TEST_F(PlateSetupOfADocument, IsReplacedAtTheEnd) {
  Vex2PlateSetup setup;
  EXPECT_EQ(document_.GetPlateSetupInfo(&setup), kNotFound);
  EXPECT_EQ(document_.GetPlateSetupComp(), nullptr);
  fill(setup, 2);
  EXPECT_EQ(document_.ReplacePlateSetup(&setup), kSuccess);
  EXPECT_EQ(document_.SetCalibrator("x"), kSuccess);
  fill(setup, 3);
  EXPECT_EQ(document_.ReplacePlateSetup(&setup), kSuccess);
  EXPECT_EQ(TagsOf(document_), "CALR CELS");
  Vex2PlateSetup read;
  EXPECT_EQ(document_.GetPlateSetupInfo(&read), kSuccess);
  ASSERT_EQ(read.count, 3);
  EXPECT_STREQ(read.cells[2].name, "sample");
  EXPECT_EQ(read.cells[2].coord1, 2);
  EXPECT_EQ(read.cells[2].description, nullptr) << "written and never read back";
  EXPECT_EQ(read.cells[2].descriptionLength, 0);
  ASSERT_EQ(read.cells[2].detectors.GetCount(), 1);
  EXPECT_EQ(read.cells[2].detectors.GetHead()->quantity, 0.25F);
  EXPECT_EQ(document_.GetPlateSetupInfo(nullptr), kSuccess);
}

TEST_F(PlateSetupOfADocument, WithoutWellsReadsBackWithoutAnArray) {
  Vex2PlateSetup none;
  EXPECT_EQ(document_.ReplacePlateSetup(&none), kSuccess);
  EXPECT_EQ(document_.SaveToFile(path_.c_str()), kSuccess);
  EXPECT_EQ(ReadBytes(path_).size(), 1024U + 8 + 2);
  Vex2FileManager reader;
  EXPECT_EQ(reader.ReadFromFile(path_.c_str()), kSuccess);
  Vex2PlateSetup read;
  fill(read, 1);
  EXPECT_EQ(reader.GetPlateSetupInfo(&read), kSuccess);
  EXPECT_EQ(read.count, 0);
  EXPECT_EQ(read.cells, nullptr);
}

TEST_F(PlateSetupOfADocument, IsWrittenAtTheEndOfTheOpenFile) {
  EXPECT_EQ(document_.WritePlateSetupComp(), kWriteFailed);
  EXPECT_EQ(document_.SaveToFile(path_.c_str()), kSuccess);
  ASSERT_EQ(document_.SafeOpen(path_.c_str(), 1, 1), 1);
  EXPECT_EQ(document_.WritePlateSetupComp(), kNotFound);
  Vex2PlateSetup setup;
  fill(setup, 1);
  EXPECT_EQ(document_.ReplacePlateSetup(&setup), kSuccess);
  document_.SeekToBegin();
  EXPECT_EQ(document_.WritePlateSetupComp(), kSuccess);
  document_.Close();
  const Bytes bytes = ReadBytes(path_);
  EXPECT_EQ(std::memcmp(bytes.data() + 1024, "CELS", 4), 0);
}

TEST_F(PlateSetupOfADocument, AloneWithItsProgramIsSaved) {
  EXPECT_EQ(document_.SaveSetupInfo(path_.c_str()), kNotFound);
  Vex2PlateSetup setup;
  fill(setup, 2);
  EXPECT_EQ(document_.ReplacePlateSetup(&setup), kSuccess);
  EXPECT_EQ(document_.SaveSetupInfo(path_.c_str()), kNotFound);
  addProgram();
  EXPECT_EQ(document_.SetCalibrator("not in it"), kSuccess);
  EXPECT_EQ(document_.SaveSetupInfo(nullptr), kWriteFailed);
  EXPECT_EQ(document_.SaveSetupInfo((folder_ / "missing/setup.vex").c_str()), kWriteFailed);
  EXPECT_EQ(document_.SaveSetupInfo(path_.c_str()), kSuccess);
  EXPECT_EQ(document_.GetFilePath(), path_.c_str());
  EXPECT_FALSE(document_.IsOpen());
  Vex2FileManager reader;
  EXPECT_EQ(reader.ReadFromFile(path_.c_str()), kSuccess);
  EXPECT_EQ(TagsOf(reader), "TPro CELS");
  EXPECT_EQ(LongAt(ReadBytes(path_), 24), 1024U) << "where the program begins";
}

TEST_F(PlateSetupOfADocument, SavedAloneLeavesTheOldDocumentWhenItFails) {
  const Bytes before = ToBytes("something else");
  WriteBytes(path_, before);
  Vex2PlateSetup setup;
  fill(setup, 2);
  EXPECT_EQ(document_.ReplacePlateSetup(&setup), kSuccess);
  addProgram();
  for (const auto call : {FileCall::write, FileCall::syncAll, FileCall::rename}) {
    FaultyFileSystem files;
    files.FailKind(call, EIO);
    EXPECT_EQ(document_.SaveSetupInfo(path_.c_str()), kWriteFailed);
    EXPECT_EQ(ReadBytes(path_), before);
    EXPECT_FALSE(document_.IsOpen());
  }
  EXPECT_EQ(document_.SaveSetupInfo(path_.c_str()), kSuccess);
}

TEST(PlateSize, IsThatOfThePlateTypesCode) {
  Vex2FileManager document;
  for (const auto& [code, wells] :
       {std::pair("c9C ", 96), std::pair("p9b ", 96), std::pair("p9C ", 96), std::pair("c3C ", 384),
        std::pair("p3b ", 384), std::pair("p3C ", 384), std::pair("p3c ", 0), std::pair("    ", 0),
        std::pair("p9C\0", 0), std::pair("\0p9C", 0)}) {
    Vex2HeaderData header = document.GetHeaderData();
    std::memcpy(header.plateTypeCode, code, 4);
    document.SetHeaderData(header);
    EXPECT_EQ(document.GetPlateSize(), wells) << code;
  }
}

class UsageArray : public testing::Test {
 protected:
  ~UsageArray() override { delete[] usage_; }

  bool* usage_ = nullptr;
  Vex2FileManager document_;
};

TEST_F(UsageArray, OfANewDocumentHasEveryWell) {
  usage_ = new bool[1]{false};
  ASSERT_TRUE(document_.GetUsageArray(usage_));
  for (int well = 0; well < 96; ++well) EXPECT_TRUE(usage_[well]) << well;
}

TEST_F(UsageArray, IsStoredRowByRow) {
  std::array<bool, 96> wells{};
  wells[0] = wells[13] = wells[95] = true;
  ASSERT_TRUE(document_.SetUsageArray(wells.data(), 8, 12));
  EXPECT_EQ(document_.GetHeaderData().usage[0], 1U);
  EXPECT_EQ(document_.GetHeaderData().usage[1], 2U);
  EXPECT_EQ(document_.GetHeaderData().usage[7], 1U << 11U);
  ASSERT_TRUE(document_.GetUsageArray(usage_));
  EXPECT_TRUE(std::equal(wells.begin(), wells.end(), usage_));
}

TEST_F(UsageArray, BeyondItsColumnsStaysAndTheColumnsThemselvesDo) {
  const bool none[4] = {};
  ASSERT_TRUE(document_.SetUsageArray(none, 2, 2));
  EXPECT_EQ(document_.GetHeaderRows(), 2);
  EXPECT_EQ(document_.GetHeaderCols(), 12);
  EXPECT_EQ(document_.GetHeaderData().usage[0], 4095U & ~3U);
}

TEST_F(UsageArray, OfNoPlateIsRefusedAndChangesNothing) {
  const bool wells[64] = {};
  for (const auto& [rows, columns] :
       {std::pair(1, 33), std::pair(0, 12), std::pair(-1, 12), std::pair(1, 0)}) {
    EXPECT_FALSE(document_.SetUsageArray(wells, rows, columns));
  }
  EXPECT_FALSE(document_.SetUsageArray(nullptr, 8, 12));
  EXPECT_EQ(document_.GetHeaderRows(), 8);
  EXPECT_EQ(document_.GetHeaderData().usage[0], 4095U);
  EXPECT_TRUE(document_.SetUsageArray(wells, 1, 32));
}

TEST_F(UsageArray, OfMoreRowsThanAHeaderCountsIsRefused) {
  constexpr int kRows = 65536;
  const auto wells = std::make_unique<bool[]>(kRows);
  EXPECT_FALSE(document_.SetUsageArray(wells.get(), kRows, 1));
  EXPECT_EQ(document_.GetHeaderRows(), 8);
  EXPECT_TRUE(document_.SetUsageArray(wells.get(), kRows - 1, 1));
}

TEST_F(UsageArray, OfAHeaderOfTheCallersIsStoredThere) {
  Vex2HeaderData header;
  const bool wells[2] = {false, true};
  ASSERT_TRUE(Vex2FileManager::SetUsageArray(wells, 1, 2, header));
  EXPECT_EQ(header.usage[0], 4094U);
  EXPECT_EQ(document_.GetHeaderRows(), 8);
}

TEST_F(UsageArray, OfAHeaderWithoutAPlateIsNotHandedOut) {
  for (const auto columns : std::initializer_list<std::uint16_t>{0, 33}) {
    Vex2HeaderData header;
    header.columns = columns;
    document_.SetHeaderData(header);
    EXPECT_FALSE(document_.GetUsageArray(usage_));
    EXPECT_EQ(usage_, nullptr);
  }
  Vex2HeaderData header;
  header.SetRows(0);
  document_.SetHeaderData(header);
  EXPECT_FALSE(document_.GetUsageArray(usage_));
}

}  // namespace
}  // namespace vex2::test
