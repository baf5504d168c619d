// Tests the analysis settings and threshold cycles of detectors: which settings are used, and when
// they are destroyed. The sanitizer finds leaks, so these tests do not look for them.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "tests/support/Counted.h"
#include "vex2/manager/Vex2FileManager.h"
#include "vex2/study/CNamedObject.h"

namespace vex2::test {
namespace {

class SettingsManager : public Vex2FileManager {
 public:
  using Vex2FileManager::GetAnalysisSettings;
  using Vex2FileManager::LookupAnalysisDetectorMapPtr;
};

// Settings that count how many of them exist.
using CountedSettings = Counted<CAnalysisSettings>;

TAGPROBE probeOf(const char* name, std::int32_t parameter1 = 7) {
  TAGPROBE probe;
  std::string_view(name).copy(probe.name, sizeof probe.name - 1);
  probe.parameters.parameter1 = parameter1;
  return probe;
}

// Makes a map as a host does: the map and its settings are allocated with new.
CAnalysisSettingsMap* mapOf(std::initializer_list<const char*> detectors,
                            std::int32_t parameter1 = 6) {
  auto* map = new CAnalysisSettingsMap;
  for (const char* detector : detectors) {
    auto* settings = new CountedSettings;
    settings->parameters.parameter1 = parameter1;
    map->SetAt(detector, settings);
  }
  return map;
}

class AnalysisSettings : public testing::Test {
 protected:
  ~AnalysisSettings() override {
    manager_.reset();
    EXPECT_EQ(CountedSettings::living, 0) << "the document was given them";
  }
  int globalCount() const { return manager_->GetAnalysisSettingsMap(nullptr)->GetCount(); }

  std::unique_ptr<SettingsManager> manager_ = std::make_unique<SettingsManager>();
};

TEST_F(AnalysisSettings, OfANewRecordAreTheDefaults) {
  const CAnalysisSettings settings;
  EXPECT_EQ(settings.settingsWord, 0);
  EXPECT_EQ(settings.parameters.parameter1, 6);
  EXPECT_EQ(settings.parameters.parameter2, 15);
  EXPECT_EQ(settings.parameters.parameter3, 0.2F);
  EXPECT_EQ(settings.parameters.parameter4, 0);
  EXPECT_EQ(settings.parameters.parameter5, 0);
  EXPECT_EQ(settings.parameters.parameter6, 0);
  EXPECT_TRUE(settings.ctList.IsEmpty());
  EXPECT_EQ(settings.queryFlag, 0);
}

TEST_F(AnalysisSettings, OfANewDocumentAreAnEmptyMap) {
  ASSERT_NE(manager_->GetAnalysisSettingsMap(nullptr), nullptr);
  EXPECT_EQ(globalCount(), 0);
  EXPECT_EQ(manager_->GetAnalysisSettingsDetectorMap(nullptr),
            manager_->LookupAnalysisDetectorMapPtr(nullptr));
  EXPECT_TRUE(manager_->GetAnalysisSettingsDetectorMap(nullptr)->OwnsMap());
}

TEST_F(AnalysisSettings, OfACopyAreAnEmptyMapOfItsOwn) {
  ASSERT_TRUE(manager_->AddDetectorToAnalysisSettingsMap(probeOf("FAM"), nullptr));
  const Vex2FileManager copy(*manager_);
  ASSERT_NE(copy.GetAnalysisSettingsMap(nullptr), nullptr);
  EXPECT_TRUE(copy.GetAnalysisSettingsMap(nullptr)->IsEmpty());
  Vex2FileManager assigned;
  ASSERT_TRUE(assigned.AddDetectorToAnalysisSettingsMap(probeOf("VIC"), nullptr));
  assigned = *manager_;
  EXPECT_TRUE(assigned.GetAnalysisSettingsMap(nullptr)->IsEmpty());
  EXPECT_EQ(globalCount(), 1);
}

TEST_F(AnalysisSettings, OfAnUnknownPlateAreNone) {
  EXPECT_EQ(manager_->GetAnalysisSettingsMap("P1"), nullptr);
  EXPECT_EQ(manager_->GetAnalysisSettingsDetectorMap("P1"), nullptr);
  EXPECT_FALSE(manager_->AddDetectorToAnalysisSettingsMap(probeOf("FAM"), "P1"));
  EXPECT_FALSE(manager_->RemoveDetectorFromAnalysisSettingsMap("FAM", "P1"));
  EXPECT_FALSE(manager_->IsAnalysisAvailableFor("P1", "FAM"));
}

TEST_F(AnalysisSettings, ProbeGivesItsParametersOnce) {
  EXPECT_TRUE(manager_->AddDetectorToAnalysisSettingsMap(probeOf("FAM", 7), nullptr));
  EXPECT_FALSE(manager_->AddDetectorToAnalysisSettingsMap(probeOf("FAM", 8), nullptr));
  const CAnalysisSettings* settings = manager_->GetAnalysisSettings(nullptr, "FAM");
  ASSERT_NE(settings, nullptr);
  EXPECT_EQ(settings->parameters, probeOf("FAM", 7).parameters);
  EXPECT_TRUE(manager_->IsAnalysisAvailableFor(nullptr, "FAM"));
  EXPECT_FALSE(manager_->IsAnalysisAvailableFor(nullptr, "fam"));
  EXPECT_FALSE(manager_->IsAnalysisAvailableFor(nullptr, nullptr));
}

TEST_F(AnalysisSettings, ProbeWithoutANameIsRefused) {
  EXPECT_FALSE(manager_->AddDetectorToAnalysisSettingsMap(probeOf(""), nullptr));
  EXPECT_EQ(globalCount(), 0);
}

TEST_F(AnalysisSettings, ProbeNameMayFillItsPlaceWithoutAZero) {
  TAGPROBE probe;
  std::memset(probe.name, 'x', sizeof probe.name);
  EXPECT_TRUE(manager_->AddDetectorToAnalysisSettingsMap(probe, nullptr));
  EXPECT_TRUE(manager_->IsAnalysisAvailableFor(nullptr, std::string(256, 'x').c_str()));
}

TEST_F(AnalysisSettings, RemovedDetectorHasNone) {
  manager_->AddAnalysisSettingsMap("P1", mapOf({"FAM", "VIC"}));
  EXPECT_EQ(CountedSettings::living, 2);
  EXPECT_FALSE(manager_->RemoveDetectorFromAnalysisSettingsMap(nullptr, "P1"));
  EXPECT_FALSE(manager_->RemoveDetectorFromAnalysisSettingsMap("ROX", "P1"));
  EXPECT_TRUE(manager_->RemoveDetectorFromAnalysisSettingsMap("FAM", "P1"));
  EXPECT_EQ(CountedSettings::living, 1);
  EXPECT_FALSE(manager_->RemoveDetectorFromAnalysisSettingsMap("FAM", "P1"));
  EXPECT_FALSE(manager_->IsAnalysisAvailableFor("P1", "FAM"));
  EXPECT_TRUE(manager_->IsAnalysisAvailableFor("P1", "VIC"));
}

TEST_F(AnalysisSettings, OfADetectorAreFoundInAMap) {
  const std::unique_ptr<CAnalysisSettingsMap> map(mapOf({"FAM"}));
  const std::unique_ptr<CAnalysisSettings> settings(map->GetAt("FAM"));
  EXPECT_EQ(manager_->GetAnalysisSettingsByDetector(map.get(), "FAM"), settings.get());
  EXPECT_EQ(manager_->GetAnalysisSettingsByDetector(map.get(), "VIC"), nullptr);
  EXPECT_EQ(manager_->GetAnalysisSettingsByDetector(nullptr, "FAM"), nullptr);
}

TEST_F(AnalysisSettings, MapOfAPlateGivesTheDocumentCopiesOfWhatItLacks) {
  ASSERT_TRUE(manager_->AddDetectorToAnalysisSettingsMap(probeOf("VIC", 99), nullptr));
  CAnalysisSettingsMap* map = mapOf({"FAM", "VIC"}, 40);
  map->GetAt("FAM")->settingsWord = 5;
  map->GetAt("FAM")->queryFlag = 1;
  map->GetAt("FAM")->SetCt(3, 21.5F);
  map->SetAt("none", nullptr);
  manager_->AddAnalysisSettingsMap("P1", map);
  EXPECT_EQ(manager_->GetAnalysisSettingsMap("P1"), map);
  EXPECT_FALSE(manager_->GetAnalysisSettingsDetectorMap("P1")->OwnsMap());

  EXPECT_EQ(globalCount(), 2);
  const CAnalysisSettings* copy = manager_->GetAnalysisSettings(nullptr, "FAM");
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy, map->GetAt("FAM"));
  EXPECT_EQ(copy->settingsWord, 5);
  EXPECT_EQ(copy->parameters.parameter1, 40);
  EXPECT_EQ(copy->queryFlag, 1);
  manager_->SetCtAt("P1", "FAM", 30.0F, 3);
  EXPECT_EQ(manager_->GetCtAt(nullptr, "FAM", 3), 21.5F) << "its entries are its own";
  EXPECT_EQ(manager_->GetAnalysisSettings(nullptr, "VIC")->parameters.parameter1, 99);
}

TEST_F(AnalysisSettings, FirstPlateInTheOrderOfNamesGivesTheDocumentItsSettings) {
  auto* document = new CAnalysisSettingsMap;
  manager_->AddAnalysisSettingsMap("B", mapOf({"FAM"}, 1));
  manager_->AddAnalysisSettingsMap("A", mapOf({"FAM"}, 2));
  EXPECT_EQ(manager_->GetAnalysisSettings(nullptr, "FAM")->parameters.parameter1, 1)
      << "settings that are there are never changed";
  manager_->AddAnalysisSettingsMap(nullptr, document);
  EXPECT_EQ(manager_->GetAnalysisSettings(nullptr, "FAM")->parameters.parameter1, 2);
  manager_->ResetGlobalAnalysisSettingsMap();
  manager_->AddAnalysisSettingsMap(nullptr, nullptr);
  delete document;
}

TEST_F(AnalysisSettings, MapThatReplacesAnotherLeavesThatToItsHost) {
  CAnalysisSettingsMap* first = mapOf({"FAM"});
  manager_->AddAnalysisSettingsMap("P1", first);
  manager_->AddAnalysisSettingsMap("P1", mapOf({"VIC"}));
  EXPECT_EQ(CountedSettings::living, 2);
  EXPECT_FALSE(manager_->IsAnalysisAvailableFor("P1", "FAM"));
  delete first->GetAt("FAM");
  delete first;
}

TEST_F(AnalysisSettings, MapThatIsPutInAgainStays) {
  CAnalysisSettingsMap* own = manager_->GetAnalysisSettingsMap(nullptr);
  ASSERT_TRUE(manager_->AddDetectorToAnalysisSettingsMap(probeOf("FAM"), nullptr));
  manager_->AddAnalysisSettingsMap(nullptr, own);
  EXPECT_EQ(manager_->GetAnalysisSettingsMap(nullptr), own);
  EXPECT_TRUE(manager_->IsAnalysisAvailableFor(nullptr, "FAM"));
}

TEST_F(AnalysisSettings, ResetOfThePlatesDestroysTheirMaps) {
  manager_->AddAnalysisSettingsMap("P1", mapOf({"FAM"}));
  manager_->AddAnalysisSettingsMap("P2", mapOf({"FAM", "VIC"}));
  EXPECT_EQ(CountedSettings::living, 3);
  manager_->ResetAnalysisSettingsPlateMap();
  EXPECT_EQ(CountedSettings::living, 0);
  EXPECT_EQ(manager_->GetAnalysisSettingsMap("P1"), nullptr);
  EXPECT_EQ(globalCount(), 2) << "the document's own stay";
}

TEST_F(AnalysisSettings, ResetOfTheDocumentsSettingsKeepsTheMap) {
  CAnalysisSettingsMap* map = mapOf({"FAM"});
  manager_->AddAnalysisSettingsMap(nullptr, map);
  manager_->ResetGlobalAnalysisSettingsMap();
  EXPECT_EQ(CountedSettings::living, 0);
  EXPECT_EQ(manager_->GetAnalysisSettingsMap(nullptr), map);
  EXPECT_TRUE(map->IsEmpty());
  manager_->AddAnalysisSettingsMap(nullptr, nullptr);
  EXPECT_EQ(manager_->GetAnalysisSettingsMap(nullptr), nullptr);
  manager_->ResetGlobalAnalysisSettingsMap();
  EXPECT_FALSE(manager_->AddDetectorToAnalysisSettingsMap(probeOf("FAM"), nullptr));
  delete map;
}

TEST_F(AnalysisSettings, ResetDestroysAllAndKeepsTheDocumentsOwnMap) {
  CAnalysisSettingsMap* own = manager_->GetAnalysisSettingsMap(nullptr);
  manager_->AddAnalysisSettingsMap("P1", mapOf({"FAM"}));
  EXPECT_EQ(manager_->Reset(), 0);
  EXPECT_EQ(CountedSettings::living, 0);
  EXPECT_EQ(manager_->GetAnalysisSettingsMap("P1"), nullptr);
  EXPECT_EQ(manager_->GetAnalysisSettingsMap(nullptr), own);
  EXPECT_TRUE(own->IsEmpty());
}

TEST_F(AnalysisSettings, ThresholdCycleOfAWellIsReplaced) {
  ASSERT_TRUE(manager_->AddDetectorToAnalysisSettingsMap(probeOf("FAM"), nullptr));
  EXPECT_EQ(manager_->GetCtAt(nullptr, "FAM", 5), -999.1F);
  EXPECT_EQ(CCtEntry::kNoCt, -999.0999755859375);
  manager_->SetCtAt(nullptr, "FAM", 24.25F, 5);
  EXPECT_EQ(manager_->GetCtAt(nullptr, "FAM", 5), 24.25F);
  manager_->SetCtAt(nullptr, "FAM", 25.5F, 5);
  manager_->SetCtAt(nullptr, "FAM", 30.0F, 6);
  EXPECT_EQ(manager_->GetCtAt(nullptr, "FAM", 5), 25.5F);
  EXPECT_EQ(manager_->GetAnalysisSettings(nullptr, "FAM")->ctList.GetCount(), 2);
  EXPECT_EQ(manager_->GetCtAt(nullptr, "FAM", 7), -999.1F);
}

TEST_F(AnalysisSettings, ThresholdCycleOfADetectorWithoutSettingsIsNotKept) {
  manager_->SetCtAt(nullptr, "FAM", 24.0F, 5);
  manager_->SetCtAt("P1", "FAM", 24.0F, 5);
  manager_->SetCtAt(nullptr, nullptr, 24.0F, 5);
  EXPECT_EQ(manager_->GetCtAt(nullptr, "FAM", 5), -999.1F);
  EXPECT_EQ(manager_->GetCtAt("P1", "FAM", 5), -999.1F);
  EXPECT_EQ(manager_->GetCtAt(nullptr, nullptr, 5), -999.1F);
  EXPECT_EQ(globalCount(), 0);
}

TEST_F(AnalysisSettings, FirstThresholdCycleThatIsOneCounts) {
  CAnalysisSettings settings;
  for (const float ct : {-999.1F, 21.0F, 22.0F}) settings.ctList.AddTail(new CCtEntry(4, ct));
  EXPECT_EQ(settings.GetCt(4), 21.0F);
  settings.SetCt(4, 20.0F);
  EXPECT_EQ(settings.GetCt(4), 20.0F) << "the first entry is the one that is set";
  EXPECT_EQ(settings.ctList.GetCount(), 3);
}

TEST_F(AnalysisSettings, QueryMarksTheDetectorsOfItsListAndNoOthers) {
  for (const char* name : {"FAM", "VIC", "ROX"}) {
    ASSERT_TRUE(manager_->AddDetectorToAnalysisSettingsMap(probeOf(name), nullptr));
  }
  manager_->GetAnalysisSettings(nullptr, "ROX")->queryFlag = 1;
  CNamedObject fam("FAM");
  CNamedObject unknown("TAMRA");
  CNamedObject nameless("");
  CObList list;
  for (CObject* object : std::initializer_list<CObject*>{&fam, nullptr, &unknown, &nameless}) {
    list.AddTail(object);
  }
  EXPECT_TRUE(manager_->PrepareQueryList(list));
  EXPECT_EQ(manager_->GetAnalysisSettings(nullptr, "FAM")->queryFlag, 1);
  EXPECT_EQ(manager_->GetAnalysisSettings(nullptr, "VIC")->queryFlag, 0);
  EXPECT_EQ(manager_->GetAnalysisSettings(nullptr, "ROX")->queryFlag, 0);

  EXPECT_FALSE(manager_->PrepareQueryList(CObList()));
  EXPECT_EQ(manager_->GetAnalysisSettings(nullptr, "FAM")->queryFlag, 0);
}

}  // namespace
}  // namespace vex2::test
