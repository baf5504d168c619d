#pragma once

#include "vex2/framework/CMapStringToOb.h"
#include "vex2/framework/CObject.h"
#include "vex2/framework/CString.h"
#include "vex2/framework/CTypedPtrMap.h"
#include "vex2/framework/Export.h"
#include "vex2/study/CAnalysisSettings.h"

/// Maps the name of a detector to its settings. The map does not own the settings; each operation
/// that takes or returns a map states who owns them.
using CAnalysisSettingsMap = CTypedPtrMap<CMapStringToOb, CString, CAnalysisSettings*>;

/// The analysis settings of a plate: a map that this object owns, or one that a host added.
class VEX2_API CAnalysisSettingsDetectorMap : public CObject {
 public:
  /// Makes an empty map that this object owns.
  CAnalysisSettingsDetectorMap();
  /// Destroys an owned map with all settings in it. A map that a host added stays unchanged.
  ~CAnalysisSettingsDetectorMap() override;
  CAnalysisSettingsDetectorMap(const CAnalysisSettingsDetectorMap&) = delete;
  CAnalysisSettingsDetectorMap& operator=(const CAnalysisSettingsDetectorMap&) = delete;

  const CRuntimeClass* GetRuntimeClass() const override;
  /// The run-time description of this class.
  static const CRuntimeClass* ClassRecord();

  /// The map in use; null if a host added null. Ownership does not change.
  CAnalysisSettingsMap* GetAnalysisSettingsMap() const { return map_; }
  /// Whether this object owns the map in use.
  bool OwnsMap() const { return ownsMap_; }

  /// Uses `map` from now on, without owning it. Destroys an owned map with all settings in it, but
  /// not a map that a host added before. Does nothing if `map` is already in use.
  void AddAnalysisSettingsMap(CAnalysisSettingsMap* map);
  /// Destroys all settings in the map, even if a host owns the map, and leaves it empty.
  void DestroySettings();
  /// Destroys all settings in the map and the map itself, even if a host owns the map.
  void DestroyMap();

  /// For hosts; the library does not use it.
  CString text;

 private:
  void release();

  CAnalysisSettingsMap* map_;
  bool ownsMap_ = true;
};
