#pragma once

#include <cstdint>

#include "vex2/framework/CObList.h"
#include "vex2/framework/CObject.h"
#include "vex2/framework/CTypedPtrList.h"
#include "vex2/framework/Export.h"
#include "vex2/study/CAnalysisParameters.h"
#include "vex2/study/CCtEntry.h"

/// With what one detector is analysed on a plate, and the threshold cycles that came out. In memory
/// only. Owns its entries; copies have entries of their own.
class VEX2_API CAnalysisSettings : public CObject {
 public:
  CAnalysisSettings() = default;
  CAnalysisSettings(const CAnalysisSettings& other);
  CAnalysisSettings& operator=(const CAnalysisSettings& other);
  ~CAnalysisSettings() override;

  const CRuntimeClass* GetRuntimeClass() const override;
  static const CRuntimeClass* ClassRecord();

  /// Gives the well's first entry another threshold cycle, or adds an entry at the end.
  void SetCt(std::int32_t well, float ct);
  /// The first threshold cycle of the well that is one; `CCtEntry::kNoCt` without any.
  float GetCt(std::int32_t well) const;

  std::int32_t settingsWord = 0;  ///< carried for the applications
  CAnalysisParameters parameters;
  CTypedPtrList<CObList, CCtEntry*> ctList;
  std::uint8_t queryFlag = 0;  ///< 1 while a query concerns the detector

 private:
  void addEntry(std::int32_t well, float ct);
  void copyEntries(const CAnalysisSettings& other);
  void clearEntries();
};
