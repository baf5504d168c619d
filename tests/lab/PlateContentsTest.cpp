#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "lab/Error.h"
#include "lab/csv/WellsFile.h"
#include "lab/model/PlateContents.h"

namespace vex2::lab {
namespace {

WellRow Row(const std::string& target, const std::string& task, float quantity) {
  WellRow row;
  row.well = 3;
  row.sample = "repeat";
  row.target = target;
  row.task = task;
  row.quantity = quantity;
  return row;
}

// Makes a document whose well A3 has one detector twice, and whose list of detectors lacks this
// detector.
void FillWithRepeatedTarget(Vex2FileManager& document) {
  Vex2PlateSetup setup;
  setup.Resize(96);
  for (unsigned index = 0; index < setup.count; ++index) {
    setup.cells[index].coord1 = static_cast<std::uint16_t>(index / 12);
    setup.cells[index].coord2 = static_cast<std::uint16_t>(index % 12);
  }
  Vex2WellSetup& cell = setup.cells[2];
  cell.SetName("repeat", 6);
  for (const bool isUsed : {true, false}) {
    auto* detector = new Vex2WellDetector;
    detector->SetDetectorName("CDK1", 4);
    detector->SetTask(isUsed ? "STND" : "ENDO", 4);
    detector->quantity = isUsed ? 1000.0F : 0.0F;
    detector->used = isUsed;
    cell.detectors.AddTail(detector);
  }
  ASSERT_EQ(document.ReplacePlateSetup(&setup), 0);
}

std::vector<bool> UsesOf(const Vex2FileManager& document) {
  Vex2PlateSetup setup;
  EXPECT_EQ(document.GetPlateSetupInfo(&setup), 0);
  std::vector<bool> uses;
  const auto& detectors = setup.cells[2].detectors;
  for (POSITION at = detectors.GetHeadPosition(); at != nullptr;) {
    uses.push_back(detectors.GetNext(at)->used);
  }
  return uses;
}

class WellsTable : public testing::Test {
 protected:
  ~WellsTable() override { std::filesystem::remove(path_); }
  void Write(const PlateContents& contents) const {
    std::ofstream file(path_);
    WriteWells(contents, file);
  }
  PlateContents Load(const PlateContents& before) const {
    FloatReader quantities(true);
    return LoadWells(path_, quantities, {}, before);
  }

  const std::string path_ =
      std::filesystem::temp_directory_path() / ("wells-" + std::to_string(::getpid()) + ".csv");
};

TEST_F(WellsTable, OwnTableWithATargetTwiceIsAcceptedBack) {
  Vex2FileManager document;
  FillWithRepeatedTarget(document);
  const PlateContents before = ContentsOf(document);
  ASSERT_EQ(before.rows.size(), 2U);
  Write(before);
  EXPECT_EQ(Load(before).rows, before.rows);
}

TEST_F(WellsTable, TargetTwiceIsASlipWhereTheDocumentHasItOnce) {
  PlateContents once;
  once.plate = kPlate96;
  once.rows = {Row("CDK1", "STND", 1000)};
  PlateContents twice = once;
  twice.rows.push_back(Row("CDK1", "ENDO", 0));
  Write(twice);
  EXPECT_THROW(Load(once), Error);
  EXPECT_THROW(Load({}), Error);
}

TEST(PlateContents, StoredAgainLeaveTheDocumentAsItIs) {
  Vex2FileManager document;
  FillWithRepeatedTarget(document);
  StoreContents(document, ContentsOf(document));
  EXPECT_EQ(document.GetAllComponentCount(), 1);
  EXPECT_TRUE(DetectorsOf(document).empty());
}

TEST(PlateContents, ChangedWellBringsNoDetectorThatTheDocumentNeverHad) {
  Vex2FileManager document;
  FillWithRepeatedTarget(document);
  PlateContents contents = ContentsOf(document);
  WellRow& added = contents.rows.emplace_back();
  added.well = 9;
  added.sample = "another";
  StoreContents(document, contents);
  EXPECT_EQ(ContentsOf(document).rows, contents.rows);
  EXPECT_TRUE(DetectorsOf(document).empty());
}

TEST(PlateContents, RepeatedDetectorKeepsTheUseOfItsTurn) {
  Vex2FileManager document;
  FillWithRepeatedTarget(document);
  PlateContents contents = ContentsOf(document);
  for (WellRow& row : contents.rows) row.sample = "other";
  StoreContents(document, contents);
  EXPECT_EQ(UsesOf(document), (std::vector<bool>{true, false}));
}

}  // namespace
}  // namespace vex2::lab
