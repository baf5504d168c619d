#pragma once

#include "vex2/framework/CMapStringToOb.h"
#include "vex2/framework/CObject.h"
#include "vex2/framework/CString.h"
#include "vex2/framework/CTypedPtrMap.h"
#include "vex2/framework/Export.h"
#include "vex2/study/CAnalysisSettings.h"

/// Settings by the name of their detector. The map itself owns nothing; who destroys what it points
/// at is said where it is handed over.
using CAnalysisSettingsMap = CTypedPtrMap<CMapStringToOb, CString, CAnalysisSettings*>;

/// The analysis settings of a plate: a map that is either its own or was put in by a host.
class VEX2_API CAnalysisSettingsDetectorMap : public CObject {
 public:
  /// With an empty map of its own.
  CAnalysisSettingsDetectorMap();
  /// Destroys a map of its own with all settings in it; a map that was put in stays as it is.
  ~CAnalysisSettingsDetectorMap() override;
  CAnalysisSettingsDetectorMap(const CAnalysisSettingsDetectorMap&) = delete;
  CAnalysisSettingsDetectorMap& operator=(const CAnalysisSettingsDetectorMap&) = delete;

  const CRuntimeClass* GetRuntimeClass() const override;
  static const CRuntimeClass* ClassRecord();

  /// The map in use, null when null was put in. It stays where it is.
  CAnalysisSettingsMap* GetAnalysisSettingsMap() const { return map_; }
  bool OwnsMap() const { return ownsMap_; }

  /// Uses `map` from now on without owning it. A map of its own is destroyed with all settings in
  /// it, one that had been put in is let go. The map in use put in again changes nothing.
  void AddAnalysisSettingsMap(CAnalysisSettingsMap* map);
  /// Destroys all settings in the map, whoever owns that, and leaves it empty.
  void DestroySettings();
  /// Destroys all settings in the map and the map, whoever owns that.
  void DestroyMap();

  /// Carried for hosts; the library leaves it empty.
  CString text;

 private:
  void release();

  CAnalysisSettingsMap* map_;
  bool ownsMap_ = true;
};
