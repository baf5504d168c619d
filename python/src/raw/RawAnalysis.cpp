// Binds results and settings of analyses, which exist only in memory.
#include "python/src/raw/RawManager.h"
#include "vex2/study/CNamedObject.h"

namespace vex2::python {

namespace {

/// A result of an analysis: any Python object, which the document stores and returns.
template <typename Result>
class Held final : public Result {
 public:
  explicit Held(py::object content) : content_(std::move(content)) {}
  ~Held() override {
    const py::gil_scoped_acquire locked;
    content_ = py::object();
  }
  const py::object& Content() const { return content_; }

 private:
  py::object content_;
};

template <typename Result>
py::object contentOf(const Result* result) {
  const auto* held = dynamic_cast<const Held<Result>*>(result);
  return held != nullptr ? held->Content() : py::object(py::none());
}

template <typename Result>
Result* heldOf(const py::object& content) {
  return content.is_none() ? nullptr : new Held<Result>(content);
}

// If C++ has an overload for a CString and one for a pointer, a str calls the first, and bytes and
// None call the second, which always returns false.
template <typename ForText, typename ForPointer>
auto byName(const TextArgument& plate, const ForText& forText, const ForPointer& forPointer) {
  if (plate.text && !plate.isBytes) return forText(CString(*plate.text));
  return forPointer(plate.Get());
}

/// The operations that get and set one kind of results, with a plate name or for the document
/// itself.
template <typename Result, typename Get, typename Set>
struct Results {
  Get get;  ///< (Result*&, optional name): returns whether there is a result
  Set set;  ///< (Result*, optional name): returns whether the result was stored

  template <typename... Name>
  py::tuple Ask(const Name&... name) const {
    Result* result = nullptr;
    const bool done = get(result, name...);
    return py::make_tuple(done, contentOf(result));
  }

  // The document no longer owns the result that was stored before, so it is released here.
  template <typename... Name>
  bool Store(const py::object& content, const Name&... name) const {
    Result* before = nullptr;
    get(before, name...);
    Result* const added = heldOf<Result>(content);
    const bool done = set(added, name...);
    Result* now = nullptr;
    get(now, name...);
    if (now == added && now != before) {
      delete before;
    } else if (now != added) {
      delete added;
    }
    return done;
  }
};

template <typename Result, typename Get, typename Set>
Results<Result, Get, Set> resultsOf(Get get, Set set) {
  return {std::move(get), std::move(set)};
}

auto mcOf(Manager& self, int well) {
  return resultsOf<IDAMCMatrix>(
      [&self, well](IDAMCMatrix*& result, const auto&... name) {
        return self.GetMCDataAt(name..., result, well);
      },
      [&self, well](IDAMCMatrix* result, const auto&... name) {
        return self.SetMCDataAt(name..., result, well);
      });
}

auto reporterOf(Manager& self, int well, bool second) {
  return resultsOf<IDAClippedMatrix>(
      [&self, well, second](IDAClippedMatrix*& result, const auto&... name) {
        return self.GetReporterAt(name..., result, well, second);
      },
      [&self, well, second](IDAClippedMatrix* result, const auto&... name) {
        return self.SetReporterAt(name..., result, well, second);
      });
}

auto meltingOf(Manager& self, int well) {
  return resultsOf<IDAMeltingPoints>(
      [&self, well](IDAMeltingPoints*& result) { return self.GetMeltingDataAt(result, well); },
      [&self, well](IDAMeltingPoints* result) { return self.SetMeltingDataAt(result, well); });
}

void bindMulticomponents(ManagerClass& manager) {
  manager
      .def(
          "GetMCDataAt", [](Manager& self, int well) { return mcOf(self, well).Ask(); },
          py::arg("well"))
      .def(
          "GetMCDataAt",
          [](Manager& self, const TextArgument& plate, int well) {
            const auto ask = [&](const auto& name) { return mcOf(self, well).Ask(name); };
            return byName(plate, ask, ask);
          },
          py::arg("plateName"), py::arg("well"))
      .def(
          "SetMCDataAt",
          [](Manager& self, const py::object& matrix, int well) {
            return mcOf(self, well).Store(matrix);
          },
          py::arg("matrix"), py::arg("well"))
      .def(
          "SetMCDataAt",
          [](Manager& self, const TextArgument& plate, const py::object& matrix, int well) {
            const auto store = [&](const auto& name) {
              return mcOf(self, well).Store(matrix, name);
            };
            return byName(plate, store, store);
          },
          py::arg("plateName"), py::arg("matrix"), py::arg("well"));
}

void bindReporters(ManagerClass& manager) {
  manager
      .def(
          "GetReporterAt",
          [](Manager& self, int well, bool second) { return reporterOf(self, well, second).Ask(); },
          py::arg("well"), py::arg("second"))
      .def(
          "GetReporterAt",
          [](Manager& self, const TextArgument& plate, int well, bool second) {
            const auto ask = [&](const auto& name) {
              return reporterOf(self, well, second).Ask(name);
            };
            return byName(plate, ask, ask);
          },
          py::arg("plateName"), py::arg("well"), py::arg("second"))
      .def(
          "SetReporterAt",
          [](Manager& self, const py::object& matrix, int well, bool second) {
            return reporterOf(self, well, second).Store(matrix);
          },
          py::arg("matrix"), py::arg("well"), py::arg("second"))
      .def(
          "SetReporterAt",
          [](Manager& self, const TextArgument& plate, const py::object& matrix, int well,
             bool second) {
            const auto store = [&](const auto& name) {
              return reporterOf(self, well, second).Store(matrix, name);
            };
            return byName(plate, store, store);
          },
          py::arg("plateName"), py::arg("matrix"), py::arg("well"), py::arg("second"))
      .def(
          "RemoveReporterAt",
          [](Manager& self, int well, bool second) { return self.RemoveReporterAt(well, second); },
          py::arg("well"), py::arg("second"))
      .def(
          "RemoveReporterAt",
          [](Manager& self, const TextArgument& plate, int well, bool second) {
            const auto remove = [&](const auto& name) {
              return self.RemoveReporterAt(name, well, second);
            };
            return byName(plate, remove, remove);
          },
          py::arg("plateName"), py::arg("well"), py::arg("second"));
}

void bindStorage(ManagerClass& manager) {
  manager.def("CreateAnalysisStorage", &Manager::CreateAnalysisStorage, py::arg("mode"))
      .def("SyncPlatesWithAnalysisStorageMap", &Manager::SyncPlatesWithAnalysisStorageMap)
      .def(
          "GetMeltingDataAt", [](Manager& self, int well) { return meltingOf(self, well).Ask(); },
          py::arg("well"))
      .def(
          "SetMeltingDataAt",
          [](Manager& self, const py::object& points, int well) {
            return meltingOf(self, well).Store(points);
          },
          py::arg("points"), py::arg("well"))
      .def("RemoveMeltingDataAt", &Manager::RemoveMeltingDataAt, py::arg("well"));
}

// Copies of the settings, by the names of their detectors; None if there is no map.
py::object fromMap(const CAnalysisSettingsMap* map) {
  if (map == nullptr) return py::none();
  py::dict copies;
  CString name;
  CAnalysisSettings* settings = nullptr;
  for (POSITION at = map->GetStartPosition(); at != nullptr;) {
    map->GetNextAssoc(at, name, settings);
    copies[FromText(name)] = settings != nullptr ? FromSettings(*settings) : py::none();
  }
  return copies;
}

void destroySettings(CAnalysisSettingsMap& map) {
  for (POSITION at = map.GetStartPosition(); at != nullptr;) delete map.GetNextValue(at);
  map.RemoveAll();
}

std::unique_ptr<CAnalysisSettingsMap> toMap(const py::object& given) {
  if (given.is_none()) return nullptr;
  // Convert all settings first, so that a value that is refused changes nothing.
  std::vector<std::pair<CString, std::unique_ptr<CAnalysisSettings>>> settings;
  for (const auto& [name, value] : py::dict(given)) {
    settings.emplace_back(ToText(name), ToSettings(value));
  }
  auto map = std::make_unique<CAnalysisSettingsMap>();
  for (auto& [name, value] : settings) map->SetAt(name, value.release());
  return map;
}

py::object holderOf(const Manager& manager, const TextArgument& plate) {
  const CAnalysisSettingsDetectorMap* holder = manager.GetAnalysisSettingsDetectorMap(plate.Get());
  if (holder == nullptr) return py::none();
  return MakeRaw("CAnalysisSettingsDetectorMap", fromMap(holder->GetAnalysisSettingsMap()),
                 holder->OwnsMap(), holder->text);
}

void bindSettings(ManagerClass& manager) {
  manager.def("GetAnalysisSettingsDetectorMap", &holderOf, py::arg("plateName"))
      .def(
          "GetAnalysisSettingsMap",
          [](const Manager& self, const TextArgument& plate) {
            return fromMap(self.GetAnalysisSettingsMap(plate.Get()));
          },
          py::arg("plateName"))
      .def(
          "AddAnalysisSettingsMap",
          [](Manager& self, const TextArgument& plate, const py::object& map) {
            self.AddSettings(plate.Get(), toMap(map));
          },
          py::arg("plateName"), py::arg("map"))
      .def(
          "AddDetectorToAnalysisSettingsMap",
          [](Manager& self, const py::object& probe, const TextArgument& plate) {
            return self.AddDetectorToAnalysisSettingsMap(ToProbe(probe), plate.Get());
          },
          py::arg("probe"), py::arg("plateName"))
      .def(
          "RemoveDetectorFromAnalysisSettingsMap",
          [](Manager& self, const TextArgument& detector, const TextArgument& plate) {
            return self.RemoveDetectorFromAnalysisSettingsMap(detector.Get(), plate.Get());
          },
          py::arg("detector"), py::arg("plateName"))
      .def(
          "GetAnalysisSettingsByDetector",
          [](const Manager& /*self*/, const py::object& map, const py::str& detector) {
            return map.is_none() ? py::object(py::none()) : map.attr("get")(detector);
          },
          py::arg("map"), py::arg("detector"))
      .def(
          "IsAnalysisAvailableFor",
          [](const Manager& self, const TextArgument& plate, const TextArgument& detector) {
            return self.IsAnalysisAvailableFor(plate.Get(), detector.Get());
          },
          py::arg("plateName"), py::arg("detector"))
      .def(
          "SetCtAt",
          [](Manager& self, const TextArgument& plate, const TextArgument& detector, float ct,
             int well) { self.SetCtAt(plate.Get(), detector.Get(), ct, well); },
          py::arg("plateName"), py::arg("detector"), py::arg("ct"), py::arg("well"))
      .def(
          "GetCtAt",
          [](const Manager& self, const TextArgument& plate, const TextArgument& detector,
             int well) { return self.GetCtAt(plate.Get(), detector.Get(), well); },
          py::arg("plateName"), py::arg("detector"), py::arg("well"))
      .def("ResetGlobalAnalysisSettingsMap", &Manager::ResetGlobalAnalysisSettingsMap)
      .def("ResetAnalysisSettingsPlateMap", &Manager::ResetAnalysisSettingsPlateMap)
      .def(
          "PrepareQueryList",
          [](Manager& self, const std::vector<CString>& names) {
            std::vector<std::unique_ptr<CNamedObject>> objects;
            CObList list;
            for (const CString& name : names) {
              objects.push_back(std::make_unique<CNamedObject>(name));
              list.AddTail(objects.back().get());
            }
            return self.PrepareQueryList(list);
          },
          py::arg("list"));
}

}  // namespace

HostMap::~HostMap() {
  if (map != nullptr) destroySettings(*map);
}

void Manager::AddSettings(const char* plate, std::unique_ptr<CAnalysisSettingsMap> added) {
  const CAnalysisSettingsDetectorMap* holder = GetAnalysisSettingsDetectorMap(plate);
  const bool isHosts = holder != nullptr && !holder->OwnsMap();
  // The document does not destroy a map that a host added before, so it is destroyed here.
  CAnalysisSettingsMap* const replaced = isHosts ? holder->GetAnalysisSettingsMap() : nullptr;
  AddAnalysisSettingsMap(plate, added.get());
  if (replaced != nullptr) destroySettings(*replaced);
  if (plate != nullptr) {
    delete replaced;
    static_cast<void>(added.release());
  } else {
    map = std::move(added);
  }
}

void BindResults(ManagerClass& manager) {
  bindStorage(manager);
  bindMulticomponents(manager);
  bindReporters(manager);
  bindSettings(manager);
}

}  // namespace vex2::python
