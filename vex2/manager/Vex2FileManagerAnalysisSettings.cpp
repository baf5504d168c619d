// With what detectors are analysed, and their threshold cycles: of the document itself and of each
// plate of a study, in memory only.

#include <cstring>

#include "vex2/manager/OrNothing.h"
#include "vex2/manager/Vex2FileManager.h"
#include "vex2/study/CNamedObject.h"

using vex2::OrNothing;

namespace {

// The map has no part in owning: settings are its document's as soon as they stand in it.
void addSettings(CAnalysisSettingsMap& map, const CString& detector,
                 std::unique_ptr<CAnalysisSettings> settings) {
  map.SetAt(detector, settings.get());
  static_cast<void>(settings.release());
}

// Adds copies of the settings of all detectors that `global` lacks.
void addWhatIsMissing(CAnalysisSettingsMap& global, const CAnalysisSettingsMap& plate) {
  CString detector;
  CAnalysisSettings* settings = nullptr;
  CAnalysisSettings* held = nullptr;
  for (POSITION at = plate.GetStartPosition(); at != nullptr;) {
    plate.GetNextAssoc(at, detector, settings);
    if (settings == nullptr || global.Lookup(detector, held)) continue;
    addSettings(global, detector, std::make_unique<CAnalysisSettings>(*settings));
  }
}

}  // namespace

CAnalysisSettingsDetectorMap* Vex2FileManager::LookupAnalysisDetectorMapPtr(
    const char* plateName) const {
  if (plateName == nullptr) return detectorMap_.get();
  return OrNothing([&] {
    const auto found = plateDetectorMaps_.find(plateName);
    return found != plateDetectorMaps_.end() ? found->second.get() : nullptr;
  });
}

CAnalysisSettingsDetectorMap* Vex2FileManager::GetAnalysisSettingsDetectorMap(
    const char* plateName) const {
  return LookupAnalysisDetectorMapPtr(plateName);
}

CAnalysisSettingsMap* Vex2FileManager::GetAnalysisSettingsMap(const char* plateName) const {
  const CAnalysisSettingsDetectorMap* detectors = LookupAnalysisDetectorMapPtr(plateName);
  return detectors != nullptr ? detectors->GetAnalysisSettingsMap() : nullptr;
}

CAnalysisSettings* Vex2FileManager::GetAnalysisSettingsByDetector(const CAnalysisSettingsMap* map,
                                                                  const CString& detector) const {
  return map != nullptr ? map->GetAt(detector) : nullptr;
}

CAnalysisSettings* Vex2FileManager::GetAnalysisSettings(const char* plateName,
                                                        const char* detector) const {
  if (detector == nullptr) return nullptr;
  return OrNothing(
      [&] { return GetAnalysisSettingsByDetector(GetAnalysisSettingsMap(plateName), detector); });
}

bool Vex2FileManager::IsAnalysisAvailableFor(const char* plateName, const char* detector) const {
  return GetAnalysisSettings(plateName, detector) != nullptr;
}

void Vex2FileManager::AddAnalysisSettingsMap(const char* plateName, CAnalysisSettingsMap* map) {
  OrNothing([&] {
    if (plateName == nullptr) {
      detectorMap_->AddAnalysisSettingsMap(map);
    } else {
      // Before its place is made: a place without a map must not stay where memory runs out.
      auto made = std::make_unique<CAnalysisSettingsDetectorMap>();
      auto& detectors = plateDetectorMaps_[plateName];
      if (detectors == nullptr) detectors = std::move(made);
      detectors->AddAnalysisSettingsMap(map);
    }
    SyncPlateDetectorsWithGlobal();
  });
}

void Vex2FileManager::SyncPlateDetectorsWithGlobal() {
  CAnalysisSettingsMap* global = GetAnalysisSettingsMap(nullptr);
  if (global == nullptr) return;
  for (const auto& [name, detectors] : plateDetectorMaps_) {
    const CAnalysisSettingsMap* plate = detectors->GetAnalysisSettingsMap();
    if (plate != nullptr) addWhatIsMissing(*global, *plate);
  }
}

bool Vex2FileManager::AddDetectorToAnalysisSettingsMap(const TAGPROBE& probe,
                                                       const char* plateName) {
  CAnalysisSettingsMap* map = GetAnalysisSettingsMap(plateName);
  const std::string_view name(probe.name, ::strnlen(probe.name, sizeof probe.name));
  if (name.empty() || map == nullptr) return false;
  return OrNothing([&] {
    const CString detector(name);
    CAnalysisSettings* held = nullptr;
    if (map->Lookup(detector, held)) return false;
    auto settings = std::make_unique<CAnalysisSettings>();
    settings->parameters = probe.parameters;
    addSettings(*map, detector, std::move(settings));
    return true;
  });
}

bool Vex2FileManager::RemoveDetectorFromAnalysisSettingsMap(const char* detector,
                                                            const char* plateName) {
  CAnalysisSettingsMap* map = GetAnalysisSettingsMap(plateName);
  CAnalysisSettings* settings = GetAnalysisSettings(plateName, detector);
  if (map == nullptr || settings == nullptr) return false;
  const bool isRemoved = OrNothing([&] { return map->RemoveKey(detector); });
  if (isRemoved) delete settings;
  return isRemoved;
}

void Vex2FileManager::SetCtAt(const char* plateName, const char* detector, const float& ct,
                              int well) {
  CAnalysisSettings* settings = GetAnalysisSettings(plateName, detector);
  if (settings != nullptr) OrNothing([&] { settings->SetCt(well, ct); });
}

float Vex2FileManager::GetCtAt(const char* plateName, const char* detector, int well) const {
  const CAnalysisSettings* settings = GetAnalysisSettings(plateName, detector);
  return settings != nullptr ? settings->GetCt(well) : CCtEntry::kNoCt;
}

void Vex2FileManager::ResetGlobalAnalysisSettingsMap() {
  detectorMap_->DestroySettings();
}

void Vex2FileManager::ResetAnalysisSettingsPlateMap() {
  // A map that was handed in goes as well: its host gave it up.
  for (const auto& [name, detectors] : plateDetectorMaps_) detectors->DestroyMap();
  plateDetectorMaps_.clear();
}

void Vex2FileManager::resetSettings() {
  ResetAnalysisSettingsPlateMap();
  ResetGlobalAnalysisSettingsMap();
}

bool Vex2FileManager::PrepareQueryList(const CObList& list) {
  const CAnalysisSettingsMap* global = GetAnalysisSettingsMap(nullptr);
  for (POSITION at = global != nullptr ? global->GetStartPosition() : nullptr; at != nullptr;) {
    if (CAnalysisSettings* settings = global->GetNextValue(at)) settings->queryFlag = 0;
  }
  for (POSITION at = list.GetHeadPosition(); at != nullptr;) {
    const auto* object = dynamic_cast<const CNamedObject*>(list.GetNext(at));
    if (object == nullptr || object->name.IsEmpty()) continue;
    CAnalysisSettings* settings = GetAnalysisSettingsByDetector(global, object->name);
    if (settings != nullptr) settings->queryFlag = 1;
  }
  return !list.IsEmpty();
}
