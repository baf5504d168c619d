// Tests the values that analysis applications store in a document: what copies share, and which
// objects are destroyed together.
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "tests/support/Counted.h"
#include "vex2/study/CAnalysisSettingsDetectorMap.h"
#include "vex2/study/CDetectorMatrix.h"
#include "vex2/study/KestorSpectrum.h"
#include "vex2/study/VexAnalysis.h"

namespace vex2::test {
namespace {

using Settings = Counted<CAnalysisSettings>;

TEST(CVector, CopiesAreIndependent) {
  CVector vector({1, 2, 3});
  const CVector copy = vector;
  const std::unique_ptr<CVector> clone = vector.Clone();
  CVector assigned;
  EXPECT_EQ(assigned.GetSize(), 0);
  assigned = vector;
  vector[1] = 9;
  for (const CVector* other :
       {&copy, static_cast<const CVector*>(clone.get()), static_cast<const CVector*>(&assigned)}) {
    EXPECT_EQ(other->GetSize(), 3);
    EXPECT_EQ((*other)[1], 2);
  }
}

TEST(CMatrix, AssignedMatrixIsIndependent) {
  CMatrix matrix(2, 3);
  matrix[1][2] = 5;
  CMatrix assigned;
  EXPECT_EQ(assigned.GetRowCount(), 0);
  EXPECT_EQ(assigned.GetColumnCount(), 0);
  assigned = matrix;
  matrix[1][2] = 6;
  const CMatrix& constant = assigned;
  EXPECT_EQ(constant.GetRowCount(), 2);
  EXPECT_EQ(constant.GetColumnCount(), 3);
  EXPECT_EQ(constant[0][0], 0);
  EXPECT_EQ(constant[1][2], 5);
}

TEST(CDetectorMatrix, HasARowForEachName) {
  const CDetectorMatrix matrix({"FAM", "VIC"}, 4);
  EXPECT_EQ(matrix.GetRowCount(), 2);
  EXPECT_EQ(matrix.GetColumnCount(), 4);
  EXPECT_EQ(matrix.GetDetectorNameArray(), (std::vector<CString>{"FAM", "VIC"}));
  EXPECT_TRUE(CDetectorMatrix().GetDetectorNameArray().empty());
}

TEST(KestorSpectrum, OfNoOrFewerValuesHasNone) {
  for (const int count : {0, -1}) {
    const KestorSpectrum spectrum(count);
    EXPECT_EQ(spectrum.values, nullptr);
    EXPECT_EQ(spectrum.valueCount, 0);
  }
  EXPECT_EQ(KestorSpectrum(2).values[1], 0U);
}

TEST(VexAnalysis, DestroysEveryResultOfEveryTable) {
  using Matrix = Counted<IDAMCMatrix>;
  using Reporter = Counted<IDAClippedMatrix>;
  using Points = Counted<IDAMeltingPoints>;
  auto analysis = std::make_unique<VexAnalysis>(2);
  for (const int index : {0, 1, 2}) EXPECT_EQ(analysis->mcData.GetAt(index), nullptr);
  for (const int index : {0, 1}) {
    analysis->mcData.SetAt(index, new Matrix);
    analysis->reporters.SetAt(index, new Reporter);
    analysis->secondReporters.SetAt(index, new Reporter);
    analysis->meltingData.SetAt(index, new Points);
  }
  EXPECT_TRUE(analysis->secondReporters.RemoveAt(1));
  EXPECT_FALSE(analysis->secondReporters.RemoveAt(1));
  EXPECT_EQ(Matrix::living + Reporter::living + Points::living, 7);
  EXPECT_STREQ(analysis->GetRuntimeClass()->name, "VexAnalysis");
  analysis.reset();
  EXPECT_EQ(Matrix::living + Reporter::living + Points::living, 0);
}

TEST(CAnalysisParameters, AreEqualWhereAllOfThemAre) {
  const CAnalysisParameters usual;
  const std::function<void(CAnalysisParameters&)> changes[] = {
      [](auto& other) { other.parameter1 = 7; }, [](auto& other) { other.parameter2 = 7; },
      [](auto& other) { other.parameter3 = 7; }, [](auto& other) { other.parameter4 = 7; },
      [](auto& other) { other.parameter5 = 7; }, [](auto& other) { other.parameter6 = 7; }};
  EXPECT_EQ(usual, CAnalysisParameters());
  for (const auto& change : changes) {
    CAnalysisParameters other;
    change(other);
    EXPECT_NE(usual, other);
  }
}

TEST(CAnalysisSettings, AreMadeByName) {
  const CRuntimeClass* record = CAnalysisSettings::ClassRecord();
  EXPECT_STREQ(record->name, "CAnalysisSettings");
  const auto object = record->CreateObject();
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(object->GetRuntimeClass(), record);
}

TEST(CAnalysisSettings, CopiesHaveEntriesOfTheirOwn) {
  CAnalysisSettings settings;
  settings.settingsWord = 3;
  settings.parameters.parameter3 = 0.5F;
  settings.queryFlag = 1;
  settings.SetCt(1, 20);
  const CAnalysisSettings copy(settings);
  CAnalysisSettings assigned;
  assigned.SetCt(9, 30);
  assigned = settings;
  const CAnalysisSettings& self = settings;
  settings = self;
  EXPECT_EQ(settings.GetCt(1), 20);
  settings.SetCt(1, 21);
  for (const CAnalysisSettings* other : {&copy, static_cast<const CAnalysisSettings*>(&assigned)}) {
    EXPECT_EQ(other->settingsWord, 3);
    EXPECT_EQ(other->parameters, settings.parameters);
    EXPECT_EQ(other->queryFlag, 1);
    EXPECT_EQ(other->ctList.GetCount(), 1);
    EXPECT_EQ(other->GetCt(1), 20);
  }
}

TEST(CAnalysisSettingsDetectorMap, DestroysTheSettingsOfAMapOfItsOwn) {
  {
    const CAnalysisSettingsDetectorMap detectors;
    EXPECT_TRUE(detectors.OwnsMap());
    EXPECT_TRUE(detectors.text.IsEmpty());
    detectors.GetAnalysisSettingsMap()->SetAt("FAM", new Settings);
    detectors.GetAnalysisSettingsMap()->SetAt("none", nullptr);
    EXPECT_EQ(Settings::living, 1);
  }
  EXPECT_EQ(Settings::living, 0);
}

TEST(CAnalysisSettingsDetectorMap, PuttingInAMapDestroysOneOfItsOwnAndNoOther) {
  CAnalysisSettingsMap first;
  CAnalysisSettingsMap second;
  first.SetAt("FAM", new Settings);
  second.SetAt("FAM", new Settings);
  {
    CAnalysisSettingsDetectorMap detectors;
    detectors.GetAnalysisSettingsMap()->SetAt("FAM", new Settings);
    EXPECT_EQ(Settings::living, 3);
    detectors.AddAnalysisSettingsMap(&first);
    EXPECT_EQ(Settings::living, 2) << "its own went";
    EXPECT_FALSE(detectors.OwnsMap());
    detectors.AddAnalysisSettingsMap(&second);
    EXPECT_EQ(detectors.GetAnalysisSettingsMap(), &second);
  }
  EXPECT_EQ(Settings::living, 2) << "those that were put in stay";
  delete first.GetAt("FAM");
  delete second.GetAt("FAM");
}

TEST(CAnalysisSettingsDetectorMap, MapThatWasPutInCanStillBeDestroyed) {
  CAnalysisSettingsDetectorMap detectors;
  auto* map = new CAnalysisSettingsMap;
  map->SetAt("FAM", new Settings);
  detectors.AddAnalysisSettingsMap(map);
  detectors.DestroySettings();
  EXPECT_EQ(Settings::living, 0);
  EXPECT_TRUE(map->IsEmpty());
  detectors.DestroyMap();
  EXPECT_EQ(detectors.GetAnalysisSettingsMap(), nullptr);
  detectors.DestroyMap();
  EXPECT_STREQ(detectors.GetRuntimeClass()->name, "CAnalysisSettingsDetectorMap");
}

}  // namespace
}  // namespace vex2::test
