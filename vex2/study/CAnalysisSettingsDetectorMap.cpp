#include "vex2/study/CAnalysisSettingsDetectorMap.h"

#include "vex2/framework/DescribeClass.h"

CAnalysisSettingsDetectorMap::CAnalysisSettingsDetectorMap() : map_(new CAnalysisSettingsMap) {}

CAnalysisSettingsDetectorMap::~CAnalysisSettingsDetectorMap() {
  release();
}

const CRuntimeClass* CAnalysisSettingsDetectorMap::ClassRecord() {
  static const CRuntimeClass record = vex2::DescribeClass<CAnalysisSettingsDetectorMap>(
      "CAnalysisSettingsDetectorMap", CObject::ClassRecord());
  return &record;
}

const CRuntimeClass* CAnalysisSettingsDetectorMap::GetRuntimeClass() const {
  return ClassRecord();
}

void CAnalysisSettingsDetectorMap::release() {
  if (ownsMap_) DestroyMap();
}

void CAnalysisSettingsDetectorMap::AddAnalysisSettingsMap(CAnalysisSettingsMap* map) {
  if (map == map_) return;
  release();
  map_ = map;
}

void CAnalysisSettingsDetectorMap::DestroySettings() {
  if (map_ == nullptr) return;
  for (POSITION at = map_->GetStartPosition(); at != nullptr;) delete map_->GetNextValue(at);
  map_->RemoveAll();
}

void CAnalysisSettingsDetectorMap::DestroyMap() {
  DestroySettings();
  delete map_;
  map_ = nullptr;
  ownsMap_ = false;
}
