#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "vex2/container/CComponent.h"
#include "vex2/framework/CString.h"
#include "vex2/manager/ReadFault.h"
#include "vex2/manager/Vex2FileManager.h"
#include "vex2/storage/DocumentStore.h"
#include "vex2/study/CAnalysisSettingsDetectorMap.h"
#include "vex2/study/VexAnalysis.h"

/// The parts of a manager's state besides header and file, with a class for each. Internal.
namespace vex2 {

/// The components of a document, in order. Owns them.
class ComponentList {
 public:
  using Components = std::span<const std::unique_ptr<CComponent>>;

  Components All() const { return components_; }
  Components::iterator begin() const { return All().begin(); }
  Components::iterator end() const { return All().end(); }

  /// The first component with this tag, or null.
  CComponent* Find(std::string_view tag) const;
  /// The first component with this tag, as a `Component`; null if there is none or if it is of
  /// another class.
  template <typename Component>
  Component* Find(std::string_view tag) const {
    return dynamic_cast<Component*>(Find(tag));
  }

  void Append(std::unique_ptr<CComponent> component);
  /// Appends all components. If memory runs out, throws and appends none.
  void Append(std::vector<std::unique_ptr<CComponent>> components);
  /// Appends `component` and removes the first component that had the same tag before. Returns the
  /// new component, because a search by its tag could find another one.
  template <typename Component>
  Component* Replace(std::unique_ptr<Component> component) {
    Component* added = component.get();
    replace(std::move(component));
    return added;
  }
  /// Does nothing for null.
  void Remove(const CComponent* component);
  void Clear() { components_.clear(); }

 private:
  void replace(std::unique_ptr<CComponent> component);

  std::vector<std::unique_ptr<CComponent>> components_;
};

/// Records whether the last reading of a document left anything out, and backs up the file before
/// it is replaced (Vex2FileManagerBackup.cpp).
class PartlyReadFile {
 public:
  bool IsWhole() const { return *fault_.reason == '\0'; }
  const ReadFault& Fault() const { return fault_; }
  /// Notes why the document cannot be read whole. Only the first fault of a reading is kept.
  void Note(std::uint64_t offset, const char* reason);
  /// Notes that the document is read from the file at `path`. Throws `CFileException`.
  void SetSource(const CString& path);
  /// Backs up the file at `path` once, if only a part of it was read. Before that closes `own`,
  /// which may hold this file open and locked. Throws `CFileException`.
  void BackUp(const char* path, CFile& own);

 private:
  ReadFault fault_;
  std::pair<std::uint64_t, std::uint64_t> identity_;  // device and number
  CString path_;                                      // with links resolved
  bool isKept_ = false;
};

/// The analysis results of a study's plates, by plate name (Vex2FileManagerAnalysis.cpp).
class PlateResults {
 public:
  VexAnalysis* Find(const CString& plate) const;
  bool Has(const CString& plate) const { return results_.count(plate) != 0; }
  /// Calls `add` and, if it returns true, adds storage for a plate. Returns the result of `add`. If
  /// memory runs out, throws before it calls `add`.
  bool Add(const CString& plate, int wells, FunctionRef<bool()> add);
  bool Remove(const CString& plate) { return results_.erase(plate) != 0; }
  /// Makes storage for each of these plates that has none, and destroys the storage of all others.
  void Sync(const CStringList& plates, int wells);
  void Clear() { results_.clear(); }

 private:
  std::map<CString, std::unique_ptr<VexAnalysis>> results_;
};

/// The settings with which detectors are analysed: those of the document itself and, by plate name,
/// those of a study's plates (Vex2FileManagerAnalysisSettings.cpp). Owns all settings, including
/// those in maps that hosts added.
class DetectorSettings {
 public:
  DetectorSettings() = default;
  ~DetectorSettings() { Reset(); }
  DetectorSettings(const DetectorSettings&) = delete;
  DetectorSettings& operator=(const DetectorSettings&) = delete;

  /// The map of this plate, or null if there is none; the document's own map for a null name.
  CAnalysisSettingsDetectorMap* Find(const char* plate) const;
  /// The map of this plate. Makes one if there is none.
  CAnalysisSettingsDetectorMap& FindOrMake(const char* plate);
  /// Copies the settings of detectors that only plates have to the document's own settings.
  void AddMissingToOwn();
  void ResetOwn() { own_->DestroySettings(); }
  void ResetPlates();
  void Reset() {
    ResetPlates();
    ResetOwn();
  }

 private:
  std::unique_ptr<CAnalysisSettingsDetectorMap> own_ =
      std::make_unique<CAnalysisSettingsDetectorMap>();
  std::map<CString, std::unique_ptr<CAnalysisSettingsDetectorMap>> ofPlates_;
};

}  // namespace vex2

/// All that a manager has besides its header, and the operations that need more than one of the
/// classes above. `manager` is the manager that owns this state.
struct Vex2FileManager::State {
  explicit State(Vex2FileManager& manager) : store(manager) {}

  /// Reads the records of `file` from the end of the header to the end of the file. Returns 0, or
  /// the status of the record at which the reading stopped. Throws `CFileException`.
  int ReadRecords(CFile& file);
  /// Notes the first fault of a plate of which only a part was read.
  void NotePlates();
  /// Backs up the file at `path` if only a part of it was read. Returns 0, or -200 if the backup
  /// fails.
  int BackUpPartlyRead(const char* path);
  /// Whether the manager's own file is a "Vex2" document. If not, sets the last error.
  bool IsDocument(Vex2FileManager& manager);
  /// Reads the header's offset of the raw data from the open file. Returns 0, or -100 if the file
  /// is not a document.
  int FindRawData(Vex2FileManager& manager, std::uint32_t& offset);
  int ReplaceRawData(Vex2FileManager& manager, const char* path, AcquisitionDataComp& block);
  /// Reads the open file as a plate that is to be added to a study.
  int ReadStudyPlate(Vex2FileManager& manager, CString& lastModified);
  int ReplaceReportingData(Vex2FileManager& manager, const char* path, AcquisitionDataComp& block);

  vex2::DocumentStore store;
  vex2::ComponentList components;
  vex2::PartlyReadFile partlyRead;
  vex2::PlateResults plateResults;
  vex2::DetectorSettings settings;
  std::uint64_t recordStart = 0;  ///< the offset of the record that is being read
};
