// Tests the queries of analysis applications about the raw readings of a document and about the
// plates of a study.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/RunDocument.h"
#include "vex2/manager/Vex2FileManagerComponent.h"

namespace vex2::test {
namespace {

// A plate with the path C:\runs\NAME.vex and `frames` frames of its first `wells` wells. In the
// frame `markedFrame`, the first reading of the first well is `mark`.
Vex2FileManager plateOf(const char* name, std::uint16_t wells, int frames, int markedFrame = -1,
                        std::uint16_t mark = 65000) {
  Vex2FileManager plate;
  plate.SetFilePath(("C:\\runs\\" + std::string(name) + ".vex").c_str());
  if (wells == 0) return plate;
  auto numbers = WellNumbers(wells);
  plate.InitAcqDataWellNumberArray(numbers.data(), wells, DataRAWa);
  for (int frame = 0; frame < frames; ++frame) {
    for (int well = 1; well <= wells; ++well) {
      Vex2WellRecord record;
      record.leading[0] = 1;
      record.leading[4] = frame == markedFrame && well == wells ? mark : 1000;
      EXPECT_TRUE(plate.SetAcqDataWellRecord(&record, frame, well, DataRAWa));
    }
  }
  return plate;
}

void setHeader(Vex2FileManager& document, const char* assayCode, const char* plateType) {
  Vex2HeaderData header = document.GetHeaderData();
  std::memcpy(header.assayCode, assayCode, 4);
  std::memcpy(header.plateTypeCode, plateType, 4);
  document.SetHeaderData(header);
}

class PlateQueries : public testing::Test {
 protected:
  PlateQueries() { setHeader(study_, "RQSt", "p9C "); }
  void add(const Vex2FileManager& plate) { ASSERT_TRUE(study_.AddRQPlate(&plate, "")); }
  static std::pair<int, int> dataOf(const Vex2FileManager& document) {
    int wells = -5;
    int largest = -5;
    document.GetPlateDataInfo(wells, largest);
    return {wells, largest};
  }
  static std::pair<long, long> infoOf(const Vex2FileManager& document) {
    long size = -5;
    const long frames = document.GetPlateInfo(size);
    return {frames, size};
  }
  static std::pair<int, int> meltingOf(const Vex2FileManager& document, const char* plate) {
    int frames = -5;
    int start = -5;
    document.FindPCRMeltingParams(plate, frames, start);
    return {frames, start};
  }

  Vex2FileManager study_;
};

using Pair = std::pair<int, int>;
using Longs = std::pair<long, long>;

TEST_F(PlateQueries, OfADocumentAreItsOwn) {
  const Vex2FileManager plate = plateOf("a", 5, 3);
  EXPECT_EQ(dataOf(plate), Pair(5, 3));
  EXPECT_EQ(infoOf(plate), Longs(3, 96));
}

TEST_F(PlateQueries, OfADocumentWithoutReadingsAreZero) {
  const Vex2FileManager plate = plateOf("a", 0, 0);
  EXPECT_EQ(dataOf(plate), Pair(0, 0));
  EXPECT_EQ(infoOf(plate), Longs(0, 96));
  EXPECT_EQ(meltingOf(plate, nullptr), Pair(0, -1));
}

TEST_F(PlateQueries, OfAStudyAreThoseOfTheFirstPlateWithReadings) {
  add(plateOf("empty", 0, 0));
  add(plateOf("full", 3, 40));
  add(plateOf("fuller", 5, 50));
  EXPECT_EQ(dataOf(study_), Pair(3, 40));
  EXPECT_EQ(infoOf(study_), Longs(40, 96));
}

TEST_F(PlateQueries, SizeIsThatOfTheLastPlateThatWasAsked) {
  Vex2FileManager large = plateOf("large", 0, 0);
  setHeader(large, "RelQ", "p3C ");
  add(plateOf("small", 0, 0));
  add(large);
  EXPECT_EQ(infoOf(study_), Longs(0, 384));
  EXPECT_EQ(dataOf(study_), Pair(0, 0));
}

TEST_F(PlateQueries, OfAStudyWithoutPlatesAreZero) {
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(dataOf(study_), Pair(0, 0));
    EXPECT_EQ(infoOf(study_), Longs(0, 0));
    EXPECT_EQ(meltingOf(study_, nullptr), Pair(0, -1));
    study_.InitMultiplate();
  }
}

TEST_F(PlateQueries, FramesUpToTheMarkBelongToTheCycling) {
  EXPECT_EQ(meltingOf(plateOf("a", 4, 45, 40), nullptr), Pair(40, 40));
  EXPECT_EQ(meltingOf(plateOf("a", 4, 45, 40, 0), nullptr), Pair(40, 40));
  EXPECT_EQ(meltingOf(plateOf("a", 4, 45, 0), nullptr), Pair(0, 0));
  EXPECT_EQ(meltingOf(plateOf("a", 4, 45), nullptr), Pair(45, -1));
  EXPECT_EQ(meltingOf(plateOf("a", 4, 45, 40, 64999), nullptr), Pair(45, -1));
}

TEST_F(PlateQueries, MeltingOfAStudyIsThatOfItsFirstPlateOrTheNamedOne) {
  add(plateOf("first", 2, 10, 7));
  add(plateOf("second", 2, 12, 8));
  EXPECT_EQ(meltingOf(study_, nullptr), Pair(7, 7));
  EXPECT_EQ(meltingOf(study_, "second"), Pair(8, 8));
  EXPECT_EQ(meltingOf(study_, "third"), Pair(0, -1));
}

TEST_F(PlateQueries, NamedPlateIsFoundAlsoWhereTheDocumentIsNoStudy) {
  add(plateOf("first", 2, 10, 7));
  setHeader(study_, "AbsQ", "p9C ");
  EXPECT_EQ(meltingOf(study_, "first"), Pair(7, 7));
  EXPECT_EQ(meltingOf(study_, nullptr), Pair(0, -1));
  EXPECT_EQ(dataOf(study_), Pair(0, 0));
}

TEST_F(PlateQueries, FramesAndDyesAreCountedByPlate) {
  Vex2FileManager plate = plateOf("first", 2, 10);
  Vex2PureDye dyes;
  dyes.SetEntryCount(2);
  dyes.entries[0].SetName("fam", 3);
  dyes.entries[1].SetName("(none)", 6);
  EXPECT_EQ(plate.ReplacePureDye(&dyes), kSuccess);
  add(plate);
  EXPECT_EQ(study_.GetDataFrameCountByName("first", DataRAWa), 10);
  EXPECT_EQ(study_.GetDataFrameCountByName("second", DataRAWa), 0);
  EXPECT_EQ(study_.GetDataFrameCountByName(nullptr, DataRAWa), 0);
  CObList list;
  EXPECT_FALSE(study_.LoadDyeListByName(&list, nullptr)) << "the study itself has no calibration";
  EXPECT_FALSE(study_.LoadDyeListByName(&list, "second"));
  EXPECT_TRUE(list.IsEmpty());
  EXPECT_TRUE(study_.LoadDyeListByName(&list, "first"));
  ASSERT_EQ(list.GetCount(), 1);
  auto* dye = dynamic_cast<Vex2DyeInfo*>(list.RemoveHead());
  ASSERT_NE(dye, nullptr);
  EXPECT_EQ(dye->name, "FAM");
  delete dye;
}

}  // namespace
}  // namespace vex2::test
