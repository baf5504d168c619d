// Tests the plates of a study in memory.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/RunDocument.h"
#include "tests/support/StudyDocument.h"

namespace vex2::test {
namespace {

using testing::ElementsAre;

TEST(AddRQPlate, PlateIsACopyUnderItsFilesTitleWithNameAndDateLast) {
  Vex2FileManager plate = PlateAt("C:\\runs\\plate7.vex");
  EXPECT_EQ(plate.AppendPlateName("old name"), kSuccess);
  EXPECT_EQ(plate.SetEndoControl("endo"), kSuccess);
  Vex2FileManager study;
  EXPECT_TRUE(study.AddRQPlate(&plate, "Mar 05, 2003 02:07 PM"));
  EXPECT_EQ(plate.SetCalibrator("changed"), kSuccess);

  const Vex2FileManagerComponent* held = study.GetSinglePlatePtrByName("plate7");
  ASSERT_NE(held, nullptr);
  EXPECT_EQ(TagsOf(*held), "CALR ENDO Path RQPD");
  EXPECT_EQ(CalibratorOf(held), "one");
  CString name;
  CString date;
  EXPECT_EQ(held->GetPlateName(name), 0);
  EXPECT_EQ(held->GetLastModifiedDate(date), 0);
  EXPECT_EQ(name, "plate7");
  EXPECT_EQ(date, "Mar 05, 2003 02:07 PM");
}

TEST(AddRQPlate, SameTitleInAnotherFolderIsRefused) {
  Vex2FileManager study;
  const Vex2FileManager first = PlateAt("C:\\a\\plate7.vex", "first");
  const Vex2FileManager second = PlateAt("C:\\b\\plate7.vex", "second");
  EXPECT_TRUE(study.AddRQPlate(&first, "x"));
  EXPECT_FALSE(study.AddRQPlate(&second, "y"));
  EXPECT_THAT(PlateNames(study), ElementsAre("plate7"));
  EXPECT_EQ(CalibratorOf(study.GetSinglePlatePtrByName("plate7")), "first");
}

TEST(AddRQPlate, SecondEmptyNameIsRefused) {
  Vex2FileManager study;
  const Vex2FileManager first = PlateAt("plate7.vex");
  const Vex2FileManager second = PlateAt("C:\\runs\\plate8");
  EXPECT_TRUE(study.AddRQPlate(&first, ""));
  EXPECT_FALSE(study.AddRQPlate(&second, ""));
  EXPECT_THAT(PlateNames(study), ElementsAre(""));
}

TEST(AddRQPlate, NamesDifferInCase) {
  Vex2FileManager study;
  const Vex2FileManager first = PlateAt("C:\\runs\\plate.vex", "small");
  const Vex2FileManager second = PlateAt("C:\\runs\\PLATE.vex", "great");
  EXPECT_TRUE(study.AddRQPlate(&first, ""));
  EXPECT_TRUE(study.AddRQPlate(&second, ""));
  EXPECT_EQ(CalibratorOf(study.GetSinglePlatePtrByName("PLATE")), "great");
  EXPECT_EQ(study.GetSinglePlatePtrByName("Plate"), nullptr);
}

TEST(AddRQPlate, NullPlateIsRefused) {
  Vex2FileManager study;
  EXPECT_FALSE(study.AddRQPlate(nullptr, "x"));
  EXPECT_EQ(study.GetAllComponentCount(), 0);
}

TEST(AddRQPlate, StudyCanHoldACopyOfItself) {
  Vex2FileManager study = PlateAt("C:\\runs\\study.vex");
  EXPECT_TRUE(study.AddRQPlate(&study, "x"));
  EXPECT_EQ(TagsOf(study), "CALR MPLC");
  EXPECT_EQ(TagsOf(*study.GetSinglePlatePtrByName("study")), "CALR Path RQPD");
}

TEST(InitMultiplate, DropsPlatesButTheirNamesStayTaken) {
  Vex2FileManager study;
  const Vex2FileManager plate = PlateAt("C:\\runs\\plate7.vex");
  study.AddRQPlate(&plate, "x");
  EXPECT_EQ(study.SetCalibrator("behind"), kSuccess);
  EXPECT_TRUE(study.InitMultiplate());
  EXPECT_EQ(TagsOf(study), "CALR MPLC");
  EXPECT_EQ(study.GetRQPlateCount(), 0);
  EXPECT_FALSE(study.AddRQPlate(&plate, "x"));
  study.SyncPlatesWithAnalysisStorageMap();
  EXPECT_TRUE(study.AddRQPlate(&plate, "x"));
}

TEST(GetMultiPlateList, NamesAndDatesArePairwiseInOrder) {
  Vex2FileManager study;
  const Vex2FileManager first = PlateAt("C:\\runs\\b.vex");
  const Vex2FileManager second = PlateAt("C:\\runs\\a.vex");
  study.AddRQPlate(&first, "date of b");
  study.AddRQPlate(&second, "date of a");
  CStringList names;
  CStringList dates;
  names.AddTail("before");
  EXPECT_TRUE(study.GetMultiPlateList(names, dates));
  EXPECT_THAT(TextsOf(names), ElementsAre("b", "a"));
  EXPECT_THAT(TextsOf(dates), ElementsAre("date of b", "date of a"));
  EXPECT_EQ(study.GetRQPlateCount(), 2);
  EXPECT_EQ(study.GetNumPlates(), 2);
}

TEST(GetMultiPlateList, WithoutPlatesRecordListsStayAsTheyWere) {
  const Vex2FileManager document;
  CStringList names;
  CStringList dates;
  names.AddTail("name");
  dates.AddTail("date");
  EXPECT_FALSE(document.GetMultiPlateList(names, dates));
  EXPECT_THAT(TextsOf(names), ElementsAre("name"));
  EXPECT_THAT(TextsOf(dates), ElementsAre("date"));
  EXPECT_EQ(document.GetRQPlateCount(), 0);
  EXPECT_EQ(document.GetNumPlates(), 0);
  EXPECT_EQ(document.GetSinglePlatePtrByName("name"), nullptr);
}

TEST(RemoveRQPlate, RemovesThePlateAndFreesItsName) {
  Vex2FileManager study;
  const Vex2FileManager first = PlateAt("C:\\runs\\a.vex");
  const Vex2FileManager second = PlateAt("C:\\runs\\b.vex");
  study.AddRQPlate(&first, "date of a");
  study.AddRQPlate(&second, "date of b");
  EXPECT_TRUE(study.RemoveRQPlate("a"));
  CStringList names;
  CStringList dates;
  study.GetMultiPlateList(names, dates);
  EXPECT_THAT(TextsOf(names), ElementsAre("b"));
  EXPECT_THAT(TextsOf(dates), ElementsAre("date of b"));
  EXPECT_EQ(study.GetComponent(0)->GetLength(), 12U);
  EXPECT_TRUE(study.AddRQPlate(&first, "again"));
  EXPECT_THAT(PlateNames(study), ElementsAre("b", "a"));
}

TEST(RemoveRQPlate, UnknownNameIsTrueOnAStudyAndFalseElsewhere) {
  Vex2FileManager study;
  EXPECT_FALSE(study.RemoveRQPlate("nobody"));
  study.InitMultiplate();
  EXPECT_TRUE(study.RemoveRQPlate("nobody"));
}

TEST(PlateTexts, AreCutToWhatOtherProgramsHold) {
  Vex2FileManager plate;
  const std::string longName(2000, 'n');
  EXPECT_EQ(plate.AppendPlateName(longName.c_str()), 0);
  EXPECT_EQ(plate.AppendLastModifiedDate(longName.c_str()), 0);
  CString name;
  CString date;
  EXPECT_EQ(plate.GetPlateName(name), kSuccess);
  EXPECT_EQ(plate.GetLastModifiedDate(date), kSuccess);
  EXPECT_EQ(name, CString(std::string_view(longName).substr(0, 1023)));
  EXPECT_EQ(date, CString(std::string_view(longName).substr(0, 1023)));
}

TEST(PlateTexts, WithoutARecordTheArgumentStays) {
  const Vex2FileManager plate;
  CString name = "before";
  EXPECT_EQ(plate.GetPlateName(name), 0);
  EXPECT_EQ(name, "before");
  EXPECT_EQ(plate.GetLastModifiedDate(name), 0);
  EXPECT_EQ(name, "before");
}

TEST(PlateTexts, AppendingMovesTheRecordToTheEnd) {
  Vex2FileManager plate;
  EXPECT_EQ(plate.AppendPlateName("one"), kSuccess);
  EXPECT_EQ(plate.AppendLastModifiedDate("date"), kSuccess);
  EXPECT_EQ(plate.AppendPlateName("two"), kSuccess);
  EXPECT_EQ(TagsOf(plate), "RQPD Path");
  CString name;
  EXPECT_EQ(plate.GetPlateName(name), kSuccess);
  EXPECT_EQ(name, "two");
}

TEST(ConvertAQ2RQ, MakesAnyDocumentAPlateForStudies) {
  Vex2FileManager document;
  EXPECT_FALSE(document.IsRQP());
  document.ConvertAQ2RQ();
  EXPECT_TRUE(document.IsRQP());
  EXPECT_FALSE(document.IsRQS());
  SetAssay(document, "RQSt");
  EXPECT_TRUE(document.IsRQS());
}

TEST(CopyOfAStudy, CarriesPlatesNamesAndDatesButNoTakenNames) {
  Vex2FileManager study;
  const Vex2FileManager plate = PlateAt("C:\\runs\\plate7.vex");
  study.AddRQPlate(&plate, "the date");
  Vex2FileManager copy(study);
  study.InitMultiplate();
  CStringList names;
  CStringList dates;
  copy.GetMultiPlateList(names, dates);
  EXPECT_THAT(TextsOf(names), ElementsAre("plate7"));
  EXPECT_THAT(TextsOf(dates), ElementsAre("the date"));
  EXPECT_EQ(CalibratorOf(copy.GetSinglePlatePtrByName("plate7")), "one");
  EXPECT_TRUE(copy.AddRQPlate(&plate, "again")) << "the copy has no analysis storage yet";
  EXPECT_EQ(copy.GetRQPlateCount(), 2);
}

TEST(GetDataFrameCountByName, AsksTheNamedPlate) {
  Vex2FileManager plate = PlateAt("C:\\runs\\plate7.vex");
  const std::uint16_t well = 1;
  plate.InitAcqDataWellNumberArray(&well, 1, DataRAWa);
  Vex2WellRecord record;
  record.leading[0] = 1;
  plate.SetAcqDataWellRecord(&record, 0, 1, DataRAWa);
  Vex2FileManager study;
  study.AddRQPlate(&plate, "");
  EXPECT_EQ(study.GetDataFrameCountByName("plate7", DataRAWa), 1);
  EXPECT_EQ(study.GetDataFrameCountByName("other", DataRAWa), 0);
  EXPECT_EQ(study.GetDataFrameCountByName(nullptr, DataRAWa), 0);
  EXPECT_EQ(plate.GetDataFrameCountByName(nullptr, DataRAWa), 1);
}

}  // namespace
}  // namespace vex2::test
