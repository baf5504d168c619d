// With what detectors are analysed, and their threshold cycles: of the document itself and of each
// plate of a study, in memory only.

#include <cstring>

#include "vex2/manager/Vex2FileManager.h"
#include "vex2/study/CNamedObject.h"

namespace {

// The map has no part in owning: settings are its document's as soon as they stand in it.
void addSettings(CAnalysisSettingsMap& map, const CString& detector,
                 std::unique_ptr<CAnalysisSettings> settings) {
  map.SetAt(detector, settings.get());
  static_cast<void>(settings.release());
}

template <class Visit>
void forEachSettings(const CAnalysisSettingsMap* map, Visit visit) {
  if (map == nullptr) return;
  CString detector;
  CAnalysisSettings* settings = nullptr;
  for (POSITION at = map->GetStartPosition(); at != nullptr;) {
    map->GetNextAssoc(at, detector, settings);
    if (settings != nullptr) visit(detector, *settings);
  }
}

}  // namespace

CAnalysisSettingsDetectorMap* Vex2FileManager::LookupAnalysisDetectorMapPtr(
    const char* plateName) const {
  if (plateName == nullptr) return detectorMap_.get();
  const auto found = plateDetectorMaps_.find(plateName);
  return found != plateDetectorMaps_.end() ? found->second.get() : nullptr;
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
  return GetAnalysisSettingsByDetector(GetAnalysisSettingsMap(plateName), detector);
}

bool Vex2FileManager::IsAnalysisAvailableFor(const char* plateName, const char* detector) const {
  return GetAnalysisSettings(plateName, detector) != nullptr;
}

void Vex2FileManager::AddAnalysisSettingsMap(const char* plateName, CAnalysisSettingsMap* map) {
  static_cast<void>(guarded(0, [&] {
    CAnalysisSettingsDetectorMap* detectors = LookupAnalysisDetectorMapPtr(plateName);
    if (detectors == nullptr) {
      auto added = std::make_unique<CAnalysisSettingsDetectorMap>();
      detectors = added.get();
      plateDetectorMaps_[plateName] = std::move(added);
    }
    detectors->AddAnalysisSettingsMap(map);
    SyncPlateDetectorsWithGlobal();
    return 0;
  }));
}

void Vex2FileManager::SyncPlateDetectorsWithGlobal() {
  CAnalysisSettingsMap* global = GetAnalysisSettingsMap(nullptr);
  if (global == nullptr) return;
  for (const auto& [name, detectors] : plateDetectorMaps_) {
    forEachSettings(detectors->GetAnalysisSettingsMap(),
                    [&](const CString& detector, const CAnalysisSettings& settings) {
                      CAnalysisSettings* held = nullptr;
                      if (global->Lookup(detector, held)) return;
                      addSettings(*global, detector, std::make_unique<CAnalysisSettings>(settings));
                    });
  }
}

bool Vex2FileManager::AddDetectorToAnalysisSettingsMap(const TAGPROBE& probe,
                                                       const char* plateName) {
  CAnalysisSettingsMap* map = GetAnalysisSettingsMap(plateName);
  const std::string_view name(probe.name, ::strnlen(probe.name, sizeof probe.name));
  if (name.empty() || map == nullptr) return false;
  return guarded(0, [&] {
           const CString detector(name);
           CAnalysisSettings* held = nullptr;
           if (map->Lookup(detector, held)) return 0;
           auto settings = std::make_unique<CAnalysisSettings>();
           settings->parameters = probe.parameters;
           addSettings(*map, detector, std::move(settings));
           return 1;
         }) == 1;
}

bool Vex2FileManager::RemoveDetectorFromAnalysisSettingsMap(const char* detector,
                                                            const char* plateName) {
  CAnalysisSettings* settings = GetAnalysisSettings(plateName, detector);
  if (settings == nullptr) return false;
  // The name may be a text that goes with the settings' key.
  const CString name = detector;
  delete settings;
  return GetAnalysisSettingsMap(plateName)->RemoveKey(name);
}

void Vex2FileManager::SetCtAt(const char* plateName, const char* detector, const float& ct,
                              int well) {
  CAnalysisSettings* settings = GetAnalysisSettings(plateName, detector);
  if (settings == nullptr) return;
  static_cast<void>(guarded(0, [&] {
    settings->SetCt(well, ct);
    return 0;
  }));
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
  forEachSettings(global,
                  [](const CString&, CAnalysisSettings& settings) { settings.queryFlag = 0; });
  for (POSITION at = list.GetHeadPosition(); at != nullptr;) {
    const auto* object = dynamic_cast<const CNamedObject*>(list.GetNext(at));
    if (object == nullptr || object->name.IsEmpty()) continue;
    CAnalysisSettings* settings = GetAnalysisSettingsByDetector(global, object->name);
    if (settings != nullptr) settings->queryFlag = 1;
  }
  return !list.IsEmpty();
}
