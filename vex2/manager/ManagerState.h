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

/// What a manager holds beside header and file, each in a class of its own. Internal.
namespace vex2 {

/// The components of a document in order. Owns them.
class ComponentList {
 public:
  using Components = std::span<const std::unique_ptr<CComponent>>;

  Components All() const { return components_; }
  Components::iterator begin() const { return All().begin(); }
  Components::iterator end() const { return All().end(); }

  /// The first component with this tag, or null.
  CComponent* Find(std::string_view tag) const;
  /// The first component with this tag as its class; null if there is none, or if it is of another
  /// class.
  template <typename Component>
  Component* Find(std::string_view tag) const {
    return dynamic_cast<Component*>(Find(tag));
  }

  void Append(std::unique_ptr<CComponent> component);
  /// All of them or, where memory runs out, none.
  void Append(std::vector<std::unique_ptr<CComponent>> components);
  /// Removes the first component with the component's tag and appends the component, which is
  /// handed out: a search by tag could find another.
  template <typename Component>
  Component* Replace(std::unique_ptr<Component> component) {
    Component* added = component.get();
    replace(std::move(component));
    return added;
  }
  /// Nothing happens for null.
  void Remove(const CComponent* component);
  void Clear() { components_.clear(); }

 private:
  void replace(std::unique_ptr<CComponent> component);

  std::vector<std::unique_ptr<CComponent>> components_;
};

/// What the last reading of a document left out, and what becomes of the file when it is replaced
/// (Vex2FileManagerBackup.cpp).
class PartlyReadFile {
 public:
  bool IsWhole() const { return *fault_.reason == '\0'; }
  const ReadFault& Fault() const { return fault_; }
  /// Keeps the first fault of a reading.
  void Note(std::uint64_t offset, const char* reason);
  /// The file at `path` is the one that is read from now on. Throws `CFileException`.
  void SetSource(const CString& path);
  /// Backs up the file at `path` if it is the one that was read in part, once. Closes `own` before,
  /// which may hold that file and its lock. Throws `CFileException`.
  void BackUp(const char* path, CFile& own);

 private:
  ReadFault fault_;
  std::pair<std::uint64_t, std::uint64_t> identity_;  // device and number
  CString path_;                                      // with links resolved
  bool isKept_ = false;
};

/// The analysis results of a study's plates by the plates' names (Vex2FileManagerAnalysis.cpp).
class PlateResults {
 public:
  VexAnalysis* Find(const CString& plate) const;
  bool Has(const CString& plate) const { return results_.count(plate) != 0; }
  /// Makes storage for a plate when `add` has returned true. False when it did not.
  bool Add(const CString& plate, int wells, FunctionRef<bool()> add);
  bool Remove(const CString& plate) { return results_.erase(plate) != 0; }
  /// Makes storage for each of these plates that has none, and destroys all other.
  void Sync(const CStringList& plates, int wells);
  void Clear() { results_.clear(); }

 private:
  std::map<CString, std::unique_ptr<VexAnalysis>> results_;
};

/// With what detectors are analysed: of the document itself, and of a study's plates by their names
/// (Vex2FileManagerAnalysisSettings.cpp). Owns all settings, those in maps that hosts handed in
/// included.
class DetectorSettings {
 public:
  DetectorSettings() = default;
  ~DetectorSettings() { Reset(); }
  DetectorSettings(const DetectorSettings&) = delete;
  DetectorSettings& operator=(const DetectorSettings&) = delete;

  /// The map of this plate, or null; the document's own for a null name.
  CAnalysisSettingsDetectorMap* Find(const char* plate) const;
  /// The map of this plate; made where there is none.
  CAnalysisSettingsDetectorMap& FindOrMake(const char* plate);
  /// Adds to the document's own settings copies of those of the plates' detectors that it lacks.
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

/// All that a manager holds beside its header, and those operations that need more of it than one
/// of the classes above. `manager` is the manager that owns this state.
struct Vex2FileManager::State {
  explicit State(Vex2FileManager& manager) : store(manager) {}

  /// Reads the records after the header of `file` up to its end. 0, or the status of the record
  /// that ended the reading. Throws `CFileException`.
  int ReadRecords(CFile& file);
  /// Takes over the first fault of the plates that were read in part.
  void NotePlates();
  /// Backs up the file at `path` if it is the one that was read in part. 0, or -200 when that
  /// fails.
  int BackUpPartlyRead(const char* path);
  /// Whether the manager's own file is a "Vex2" document; where not, that is the last error.
  bool IsDocument(Vex2FileManager& manager);
  /// Reads the header's offset of raw data from the open file. -100 when it is no document.
  int FindRawData(Vex2FileManager& manager, std::uint32_t& offset);
  int ReplaceRawData(Vex2FileManager& manager, const char* path, AcquisitionDataComp& block);
  /// Reads the open file as a plate that is to join a study.
  int ReadStudyPlate(Vex2FileManager& manager, CString& lastModified);
  int ReplaceReportingData(Vex2FileManager& manager, const char* path, AcquisitionDataComp& block);

  vex2::DocumentStore store;
  vex2::ComponentList components;
  vex2::PartlyReadFile partlyRead;
  vex2::PlateResults plateResults;
  vex2::DetectorSettings settings;
  std::uint64_t recordStart = 0;  ///< of the record that is being read
};
