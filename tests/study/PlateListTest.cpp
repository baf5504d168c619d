// Tests how documents store the list of plates of a study.
#include <gtest/gtest.h>

#include <limits>

#include "tests/container/Stream.h"
#include "tests/support/DocumentBytes.h"
#include "vex2/container/CLongValueComp.h"
#include "vex2/manager/Vex2FileManagerComponent.h"
#include "vex2/study/CMultiPlateComp.h"
#include "vex2/study/CRQPlateComp.h"

namespace vex2::test {
namespace {

class PlateList : public StreamTest {
 protected:
  static std::unique_ptr<CRQPlateComp> plateNamed(const char* name) {
    auto plate = std::make_unique<CRQPlateComp>();
    plate->SetPlate(name, Vex2FileManager(), "today");
    return plate;
  }

  CMultiPlateComp plates_;
};

TEST_F(PlateList, TakesNoInvalidPlateAndNoMoreThanItCanCount) {
  EXPECT_FALSE(plates_.AddPlate(nullptr));
  for (int index = 0; index < 65535; ++index) {
    ASSERT_TRUE(plates_.AddPlate(std::make_unique<CRQPlateComp>()));
  }
  EXPECT_FALSE(plates_.AddPlate(std::make_unique<CRQPlateComp>()));
  EXPECT_EQ(plates_.GetChildCount(), 65535);
}

TEST_F(PlateList, KnowsWhatIsAPlate) {
  plates_.AddChild(std::make_unique<CLongValueComp>("VERS", 1));
  ASSERT_TRUE(plates_.AddPlate(plateNamed("a")));
  EXPECT_EQ(plates_.GetPlateAt(0), nullptr);
  EXPECT_EQ(plates_.GetPlateAt(2), nullptr);
  EXPECT_EQ(plates_.GetPlateAt(-1), nullptr);
  EXPECT_EQ(plates_.FindPlate("a"), 1);
  EXPECT_EQ(plates_.FindPlate(""), -1);
  CStringList names;
  CStringList dates;
  plates_.GetPlateLists(names, dates);
  ASSERT_EQ(names.GetCount(), 1);
  EXPECT_EQ(names.GetHead(), "a");
  EXPECT_EQ(dates.GetHead(), "today");
}

TEST_F(PlateList, NullFilesAreAStatus) {
  EXPECT_EQ(plates_.ReadChildren(nullptr), -100);
  CRQPlateComp plate;
  EXPECT_EQ(plate.ReadChildren(nullptr), -100);
  EXPECT_EQ(plate.WriteChildren(nullptr), -200);
}

TEST_F(PlateList, PlateWithoutADocumentIsWrittenWithANewOne) {
  CRQPlateComp empty;
  EXPECT_EQ(empty.GetPlate(), nullptr);
  const std::string bytes = Written(empty);
  CRQPlateComp read;
  ASSERT_EQ(read.Read(&Holding(bytes)), 0);
  EXPECT_EQ(read.GetPlateName(), "");
  ASSERT_NE(read.GetPlate(), nullptr);
  EXPECT_EQ(read.GetPlate()->GetHeaderRows(), 8);
}

TEST_F(PlateList, ReadingReplacesThePreviousPlate) {
  auto first = plateNamed("first");
  const std::string bytes = Written(*plateNamed("second"));
  ASSERT_EQ(first->Read(&Holding(bytes)), 0);
  EXPECT_EQ(first->GetPlateName(), "second");
}

TEST_F(PlateList, CopiesOfPlatesAreDeepAndOfNothingElse) {
  const auto plate = plateNamed("a");
  CRQPlateComp copy;
  copy.Assign(*plate);
  EXPECT_EQ(copy.GetPlateName(), "a");
  EXPECT_NE(copy.GetPlate(), nullptr);
  EXPECT_NE(copy.GetPlate(), plate->GetPlate());
  copy.Assign(copy);
  copy.Assign(CMultiPlateComp());
  EXPECT_EQ(copy.GetPlateName(), "a");
  copy.Assign(CRQPlateComp());
  EXPECT_EQ(copy.GetPlate(), nullptr);
}

}  // namespace
}  // namespace vex2::test
