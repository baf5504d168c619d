// The analysis settings and the threshold cycles of detectors, of the document itself and of each
// plate of a study, in memory only.

#include <cstring>

#include "vex2/manager/ManagerState.h"
#include "vex2/manager/OrNothing.h"
#include "vex2/study/CNamedObject.h"

using vex2::OrNothing;

namespace {

// The map does not own the settings: the document owns them as soon as they are in the map.
void addSettings(CAnalysisSettingsMap& map, const CString& detector,
                 std::unique_ptr<CAnalysisSettings> settings) {
  map.SetAt(detector, settings.get());
  static_cast<void>(settings.release());
}

// Adds to `global` copies of those settings in `plate` whose detectors `global` lacks.
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
  return OrNothing([&] { return state_->settings.Find(plateName); });
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
    state_->settings.FindOrMake(plateName).AddAnalysisSettingsMap(map);
    SyncPlateDetectorsWithGlobal();
  });
}

void Vex2FileManager::SyncPlateDetectorsWithGlobal() {
  state_->settings.AddMissingToOwn();
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
  state_->settings.ResetOwn();
}

void Vex2FileManager::ResetAnalysisSettingsPlateMap() {
  state_->settings.ResetPlates();
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

namespace vex2 {

CAnalysisSettingsDetectorMap* DetectorSettings::Find(const char* plate) const {
  if (plate == nullptr) return own_.get();
  const auto found = ofPlates_.find(plate);
  return found != ofPlates_.end() ? found->second.get() : nullptr;
}

CAnalysisSettingsDetectorMap& DetectorSettings::FindOrMake(const char* plate) {
  if (plate == nullptr) return *own_;
  // Make the map before the entry: if memory runs out, no entry without a map may remain.
  auto made = std::make_unique<CAnalysisSettingsDetectorMap>();
  auto& detectors = ofPlates_[plate];
  if (detectors == nullptr) detectors = std::move(made);
  return *detectors;
}

void DetectorSettings::AddMissingToOwn() {
  CAnalysisSettingsMap* own = own_->GetAnalysisSettingsMap();
  if (own == nullptr) return;
  for (const auto& [name, detectors] : ofPlates_) {
    const CAnalysisSettingsMap* plate = detectors->GetAnalysisSettingsMap();
    if (plate != nullptr) addWhatIsMissing(*own, *plate);
  }
}

void DetectorSettings::ResetPlates() {
  // This also destroys the maps that hosts added: a host gives its map up when it adds it.
  for (const auto& [name, detectors] : ofPlates_) detectors->DestroyMap();
  ofPlates_.clear();
}

}  // namespace vex2
