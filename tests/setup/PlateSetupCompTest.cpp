// Tests how documents store the plate setup.
#include <gtest/gtest.h>

#include "tests/container/Stream.h"
#include "tests/support/DocumentBytes.h"
#include "vex2/container/CBlockValueComp.h"
#include "vex2/container/CSkippedComp.h"
#include "vex2/container/TagFactory.h"
#include "vex2/setup/CPlateSetupComp.h"

namespace vex2::test {
namespace {

using namespace std::string_literals;

class PlateSetup : public StreamTest {};

std::string cellBody(int children, int coord1, int coord2, int flag, const std::string& records) {
  return BigEndian(static_cast<std::uint64_t>(children), 2) +
         BigEndian(static_cast<std::uint64_t>(coord1), 2) +
         BigEndian(static_cast<std::uint64_t>(coord2), 2) +
         BigEndian(static_cast<std::uint64_t>(flag), 1) + records;
}

Vex2WellDetector* addDetector(Vex2WellSetup& well, std::string_view name, std::string_view task) {
  auto* detector = new Vex2WellDetector;
  detector->SetDetectorName(name.data(), static_cast<std::int32_t>(name.size()));
  detector->SetTask(task.data(), static_cast<std::int32_t>(task.size()));
  well.detectors.AddTail(detector);
  return detector;
}

const std::string kBareDetector =
    ListRecord("DETT", 2, Record("QANT", "\0\0\0\0"s) + Record("DUSE", "\1"));

TEST_F(PlateSetup, OfNoWellsIsTwoZeroBytesAndReadsBackAsNoArray) {
  const Vex2PlateSetup none;
  CPlateSetupComp setup(none);
  EXPECT_EQ(Written(setup), Record("CELS", "\0\0"s));
  CPlateSetupComp read;
  ASSERT_EQ(read.Read(&Holding(Record("CELS", "\0\0"s))), 0);
  Vex2PlateSetup back;
  back.Resize(5);
  read.CopyTo(back);
  EXPECT_EQ(back.count, 0);
  EXPECT_EQ(back.cells, nullptr);
}

TEST_F(PlateSetup, IsTheOnlyComponentThatReportsToBeOne) {
  EXPECT_TRUE(CPlateSetupComp().IsPlateSetupComp());
  EXPECT_FALSE(CCellComp().IsPlateSetupComp());
}

TEST_F(PlateSetup, IsWrittenCellByCellInItsOrder) {
  Vex2PlateSetup setup;
  setup.Resize(2);
  setup.cells[0].coord1 = 1;
  setup.cells[0].coord2 = 0x0203;
  setup.cells[0].flag = false;
  setup.cells[0].SetName("water", 5);
  setup.cells[0].SetDescription("from the tap", 12);
  Vex2WellDetector* detector = addDetector(setup.cells[0], "MYC", "STND");
  detector->quantity = 1;
  detector->used = false;
  addDetector(setup.cells[0], "", "");
  CPlateSetupComp component(setup);

  const std::string first =
      Record("NAME", "water") + Record("DESC", "from the tap") +
      ListRecord("DETT", 4,
                 Record("DNAM", "MYC") + Record("TASK", "STND") +
                     Record("QANT", "\x00\x00\x80\x3F"s) + Record("DUSE", "\0"s)) +
      kBareDetector;
  EXPECT_EQ(Written(component), ListRecord("CELS", 2,
                                           Record("CELL", cellBody(4, 1, 0x0203, 0, first)) +
                                               Record("CELL", cellBody(0, 0, 0, 1, ""))));
}

TEST_F(PlateSetup, GivesBackAllButTheDescriptionWhichStaysInTheFile) {
  Vex2PlateSetup setup;
  setup.Resize(1);
  setup.cells[0].coord1 = 7;
  setup.cells[0].coord2 = 8;
  setup.cells[0].flag = false;
  setup.cells[0].SetName("liver", 5);
  setup.cells[0].SetDescription("kept", 4);
  addDetector(setup.cells[0], "MYC", "UNKN")->quantity = 2.5F;
  addDetector(setup.cells[0], "IL6", "")->used = false;
  CPlateSetupComp component(setup);
  const std::string bytes = Written(component);
  EXPECT_NE(bytes.find("DESC"), std::string::npos);

  CPlateSetupComp read;
  ASSERT_EQ(read.Read(&Holding(bytes)), 0);
  Vex2PlateSetup back;
  read.CopyTo(back);
  ASSERT_EQ(back.count, 1);
  const Vex2WellSetup& well = back.cells[0];
  EXPECT_EQ(well.coord1, 7);
  EXPECT_EQ(well.coord2, 8);
  EXPECT_FALSE(well.flag);
  EXPECT_STREQ(well.name, "liver");
  EXPECT_EQ(well.nameLength, 5);
  EXPECT_EQ(well.description, nullptr);
  EXPECT_EQ(well.descriptionLength, 0);
  ASSERT_EQ(well.detectors.GetCount(), 2);
  POSITION at = well.detectors.GetHeadPosition();
  const Vex2WellDetector* first = well.detectors.GetNext(at);
  EXPECT_STREQ(first->detectorName, "MYC");
  EXPECT_STREQ(first->task, "UNKN");
  EXPECT_EQ(first->quantity, 2.5F);
  EXPECT_TRUE(first->used);
  const Vex2WellDetector* second = well.detectors.GetNext(at);
  EXPECT_STREQ(second->detectorName, "IL6");
  EXPECT_EQ(second->task, nullptr);
  EXPECT_FALSE(second->used);
  EXPECT_EQ(Written(read), bytes);
}

TEST_F(PlateSetup, LeavesOutTextsThatAreEmpty) {
  Vex2PlateSetup setup;
  setup.Resize(4);
  setup.cells[1].SetName("", 0);
  setup.cells[2].SetName("\0x", 2);  // a first character of 0 makes the text empty
  setup.cells[3].SetName("x", 1);
  setup.cells[3].SetName("", -1);
  CPlateSetupComp component(setup);
  for (int index = 0; index < 4; ++index) {
    EXPECT_EQ(dynamic_cast<CCellComp*>(component.GetChild(index))->GetChildCount(), 0) << index;
  }
  Vex2PlateSetup back;
  component.CopyTo(back);
  ASSERT_EQ(back.count, 4);
  EXPECT_EQ(back.cells[0].name, nullptr);
  EXPECT_EQ(back.cells[0].nameLength, 0);
  EXPECT_EQ(back.cells[0].description, nullptr);
}

TEST_F(PlateSetup, AnyFlagButZeroIsTrueAndKeptAsItWas) {
  const std::string bytes = ListRecord("CELS", 1, Record("CELL", cellBody(0, 0, 0, 200, "")));
  CPlateSetupComp setup;
  ASSERT_EQ(setup.Read(&Holding(bytes)), 0);
  Vex2PlateSetup back;
  setup.CopyTo(back);
  EXPECT_TRUE(back.cells[0].flag);
  EXPECT_EQ(Written(setup), bytes);
}

TEST_F(PlateSetup, SkipsWhatIsNoneOfAWellsRecordsAndKeepsItInTheFile) {
  const std::string used = ListRecord("DETT", 1, Record("DUSE", "\x7F"));
  const std::string children = Record("OWNR", "me") + Record("NAME", "a") + Record("NAME", "b") +
                               ListRecord("SPEC", 1, Record("DNAM", "no")) + used;
  const std::string bytes = ListRecord("CELS", 1, Record("CELL", cellBody(5, 0, 0, 1, children)));
  CPlateSetupComp setup;
  ASSERT_EQ(setup.Read(&Holding(bytes)), 0);
  Vex2PlateSetup back;
  setup.CopyTo(back);
  EXPECT_STREQ(back.cells[0].name, "b");
  ASSERT_EQ(back.cells[0].detectors.GetCount(), 1);
  EXPECT_TRUE(back.cells[0].detectors.GetHead()->used);
  EXPECT_EQ(Written(setup), bytes);
}

TEST_F(PlateSetup, SkipsWhatIsNoneOfADetectorsRecords) {
  const std::string detector =
      ListRecord("DETT", 4,
                 Record("NAME", "no") + Record("DYCD", "\0\0\0\1"s) +
                     Record("DATH", "\0\0\x80\x3F"s) + Record("DAAB", "\0"s));
  CPlateSetupComp setup;
  ASSERT_EQ(
      setup.Read(&Holding(ListRecord("CELS", 1, Record("CELL", cellBody(1, 0, 0, 1, detector))))),
      0);
  Vex2PlateSetup back;
  setup.CopyTo(back);
  ASSERT_EQ(back.cells[0].detectors.GetCount(), 1);
  const Vex2WellDetector& read = *back.cells[0].detectors.GetHead();
  EXPECT_EQ(read.detectorName, nullptr);
  EXPECT_EQ(read.task, nullptr);
  EXPECT_EQ(read.quantity, 0);
  EXPECT_TRUE(read.used);
}

TEST_F(PlateSetup, LeavesOutDetectorsThatAreNone) {
  Vex2WellSetup well;
  well.detectors.AddTail(nullptr);
  addDetector(well, "MYC", "UNKN");
  const CCellComp cell(well);
  EXPECT_EQ(cell.GetChildCount(), 1);
}

TEST_F(PlateSetup, OfMoreDetectorsThanAWellCanCountIsRefused) {
  Vex2WellSetup well;
  for (int index = 0; index < 65536; ++index) well.detectors.AddTail(new Vex2WellDetector);
  EXPECT_THROW(CCellComp{well}, std::length_error);
}

TEST_F(PlateSetup, DoesNotTrustTagsForTheClass) {
  Vex2PlateSetup setup;
  setup.Resize(1);
  CPlateSetupComp component(setup);
  auto* cell = dynamic_cast<CCellComp*>(component.GetChild(0));
  cell->AddChild(std::make_unique<CSkippedComp>("NAME", 100));
  cell->AddChild(std::make_unique<CSkippedComp>("DETT", 100));
  component.AddChild(std::make_unique<CSkippedComp>("CELL", 100));
  Vex2PlateSetup back;
  component.CopyTo(back);
  ASSERT_EQ(back.count, 2);
  EXPECT_EQ(back.cells[0].name, nullptr);
  EXPECT_TRUE(back.cells[0].detectors.IsEmpty());
}

TEST_F(PlateSetup, ReadsEachOfItsRecordsAsACellWhateverItsTag) {
  CPlateSetupComp setup;
  ASSERT_EQ(setup.Read(&Holding(ListRecord("CELS", 1, Record("Zzzz", cellBody(0, 5, 6, 1, ""))))),
            0);
  EXPECT_EQ(Written(setup), ListRecord("CELS", 1, Record("CELL", cellBody(0, 5, 6, 1, ""))));
}

TEST_F(PlateSetup, WithACellMissingIsUnreadable) {
  const std::string cell = Record("CELL", cellBody(0, 0, 0, 1, ""));
  CPlateSetupComp setup;
  EXPECT_EQ(setup.Read(&Holding(ListRecord("CELS", 2, cell))), -300);
  EXPECT_EQ(setup.Read(&Holding(ListRecord("CELS", 65535, ""))), -300);
  EXPECT_EQ(setup.GetChildCount(), 0);
  EXPECT_EQ(setup.Read(&Holding(Record("CELS", "\0"s))), -100);
}

TEST_F(PlateSetup, WithACutOffCellIsUnreadable) {
  for (std::size_t kept = 0; kept < 7; ++kept) {
    CPlateSetupComp setup;
    const std::string body = cellBody(0, 0, 0, 1, "").substr(0, kept);
    EXPECT_EQ(setup.Read(&Holding(ListRecord("CELS", 1, RecordDeclaring("CELL", 7, body)))), -100)
        << kept;
  }
}

TEST_F(PlateSetup, CellWithoutBodyIsWhatANewOneIs) {
  CPlateSetupComp setup;
  ASSERT_EQ(setup.Read(&Holding(ListRecord("CELS", 1, Record("CELL", "")))), 0);
  Vex2PlateSetup back;
  setup.CopyTo(back);
  ASSERT_EQ(back.count, 1);
  EXPECT_TRUE(back.cells[0].flag);
}

TEST_F(PlateSetup, IsCopiedDeep) {
  const std::string bytes = ListRecord(
      "CELS", 1, Record("CELL", cellBody(2, 3, 4, 9, Record("NAME", "a") + kBareDetector)));
  CPlateSetupComp setup;
  ASSERT_EQ(setup.Read(&Holding(bytes)), 0);
  std::unique_ptr<CComponent> copy;
  ASSERT_EQ(CloneComponent(setup, copy), 1);
  setup.FreeBody();
  EXPECT_EQ(Written(*copy), bytes);
  EXPECT_NE(dynamic_cast<CPlateSetupComp*>(copy.get()), nullptr);
}

TEST_F(PlateSetup, AllocatingMakesNewCellsAndFreeingDropsThem) {
  Vex2PlateSetup setup;
  setup.Resize(3);
  setup.cells[0].SetName("a", 1);
  CPlateSetupComp component(setup);
  component.AllocateBody();
  ASSERT_EQ(component.GetChildCount(), 3);
  EXPECT_EQ(dynamic_cast<CCellComp*>(component.GetChild(0))->GetChildCount(), 0);
  component.FreeBody();
  EXPECT_EQ(component.GetChildCount(), 0);
  EXPECT_EQ(component.GetCount(), 3);
  component.CopyTo(setup);
  EXPECT_EQ(setup.count, 3);
  EXPECT_EQ(setup.cells[0].name, nullptr);
}

TEST_F(PlateSetup, NewCellTakesSevenBytes) {
  EXPECT_EQ(CCellComp().GetLength(), 7U);
  EXPECT_EQ(CPlateSetupComp().GetLength(), 2U);
}

TEST_F(PlateSetup, NullFilesAreAStatus) {
  CPlateSetupComp setup;
  CCellComp cell;
  EXPECT_EQ(setup.ReadBody(nullptr), -100);
  EXPECT_EQ(setup.WriteBody(nullptr), -200);
  EXPECT_EQ(cell.ReadBody(nullptr), -100);
  EXPECT_EQ(cell.WriteBody(nullptr), -200);
}

}  // namespace
}  // namespace vex2::test
