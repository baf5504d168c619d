#include "vex2/study/CAnalysisSettings.h"

#include <memory>

#include "vex2/framework/DescribeClass.h"

// Delegates to the other constructor, so that the destructor runs if an allocation fails.
CAnalysisSettings::CAnalysisSettings(const CAnalysisSettings& other) : CAnalysisSettings() {
  *this = other;
}

CAnalysisSettings& CAnalysisSettings::operator=(const CAnalysisSettings& other) {
  if (this == &other) return *this;
  settingsWord = other.settingsWord;
  parameters = other.parameters;
  queryFlag = other.queryFlag;
  clearEntries();
  copyEntries(other);
  return *this;
}

CAnalysisSettings::~CAnalysisSettings() {
  clearEntries();
}

const CRuntimeClass* CAnalysisSettings::ClassRecord() {
  static const CRuntimeClass record =
      vex2::DescribeClass<CAnalysisSettings>("CAnalysisSettings", CObject::ClassRecord());
  return &record;
}

const CRuntimeClass* CAnalysisSettings::GetRuntimeClass() const {
  return ClassRecord();
}

void CAnalysisSettings::addEntry(std::int32_t well, float ct) {
  auto entry = std::make_unique<CCtEntry>(well, ct);
  ctList.AddTail(entry.get());
  static_cast<void>(entry.release());
}

void CAnalysisSettings::copyEntries(const CAnalysisSettings& other) {
  for (POSITION at = other.ctList.GetHeadPosition(); at != nullptr;) {
    const CCtEntry* entry = other.ctList.GetNext(at);
    addEntry(entry->well, entry->ct);
  }
}

void CAnalysisSettings::clearEntries() {
  while (!ctList.IsEmpty()) delete ctList.RemoveHead();
}

void CAnalysisSettings::SetCt(std::int32_t well, float ct) {
  for (POSITION at = ctList.GetHeadPosition(); at != nullptr;) {
    CCtEntry* entry = ctList.GetNext(at);
    if (entry->well != well) continue;
    entry->ct = ct;
    return;
  }
  addEntry(well, ct);
}

float CAnalysisSettings::GetCt(std::int32_t well) const {
  float ct = CCtEntry::kNoCt;
  for (POSITION at = ctList.GetHeadPosition(); at != nullptr && ct == CCtEntry::kNoCt;) {
    const CCtEntry* entry = ctList.GetNext(at);
    if (entry->well == well) ct = entry->ct;
  }
  return ct;
}
