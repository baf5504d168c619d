#pragma once

#include <cstdint>

#include "vex2/framework/CObList.h"
#include "vex2/framework/CObject.h"
#include "vex2/framework/CTypedPtrList.h"
#include "vex2/framework/Export.h"
#include "vex2/study/CAnalysisParameters.h"
#include "vex2/study/CCtEntry.h"

/// The analysis settings of one detector on a plate, and the resulting threshold cycles. Exists
/// only in memory. Owns its entries; copies are independent.
class VEX2_API CAnalysisSettings : public CObject {
 public:
  /// Makes settings with default parameters and no threshold cycles.
  CAnalysisSettings() = default;
  /// Copies all fields and all entries.
  CAnalysisSettings(const CAnalysisSettings& other);
  /// Destroys the entries, and copies all fields and all entries.
  CAnalysisSettings& operator=(const CAnalysisSettings& other);
  ~CAnalysisSettings() override;

  const CRuntimeClass* GetRuntimeClass() const override;
  /// The run-time description of this class.
  static const CRuntimeClass* ClassRecord();

  /// Sets the threshold cycle of the first entry of `well`, a well number. If there is no such
  /// entry, adds one at the end.
  void SetCt(std::int32_t well, float ct);
  /// The first threshold cycle of `well`, a well number, that is not `CCtEntry::kNoCt`; `kNoCt` if
  /// there is none.
  float GetCt(std::int32_t well) const;

  std::int32_t settingsWord = 0;             ///< for applications; the library does not use it
  CAnalysisParameters parameters;            ///< of the detector's analysis
  CTypedPtrList<CObList, CCtEntry*> ctList;  ///< the threshold cycles, owned by this object
  std::uint8_t queryFlag = 0;                ///< 1 while a query selects the detector

 private:
  void addEntry(std::int32_t well, float ct);
  void copyEntries(const CAnalysisSettings& other);
  void clearEntries();
};
