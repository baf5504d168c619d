#pragma once

#include <memory>

#include "python/src/raw/RawValues.h"
#include "vex2/manager/Vex2FileManagerComponent.h"

namespace vex2::python {

/// The map of analysis settings that a host added for the document itself. The host owns it.
struct HostMap {
  HostMap() = default;
  HostMap(const HostMap& /*other*/) {}
  HostMap& operator=(const HostMap& /*other*/) { return *this; }
  /// Destroys the settings that are still in the map.
  ~HostMap();

  std::unique_ptr<CAnalysisSettingsMap> map;
};

/// The document of the raw interface, as Python holds it. Its map of settings exists longer than
/// the document.
class Manager final : private HostMap, public Vex2FileManager {
 public:
  Manager() = default;
  explicit Manager(const Vex2FileManager& other) : Vex2FileManager(other) {}

  /// Sets the settings of a plate to `added`, and destroys the settings that this replaces.
  void AddSettings(const char* plate, std::unique_ptr<CAnalysisSettingsMap> added);
};

using ManagerClass = py::class_<Manager>;

void BindNumbers(py::module_& module);

// The parts of the class, each bound in a separate source.
void BindLife(ManagerClass& manager);
void BindHeader(ManagerClass& manager);
void BindContents(ManagerClass& manager);
void BindReadings(ManagerClass& manager);
void BindStudy(ManagerClass& manager);
void BindResults(ManagerClass& manager);

}  // namespace vex2::python
