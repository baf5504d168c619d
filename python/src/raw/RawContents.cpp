// Binds the content of a document except readings: settings, program, plate, detectors,
// calibration, dyes.
#include <span>

#include "python/src/raw/RawManager.h"
#include "vex2/run/ThermocycleProgramComp.h"
#include "vex2/setup/CPlateSetupComp.h"

namespace vex2::python {

namespace {

void setProgram(ThermocycleProgram& program, const std::string& bytes) {
  program.length = static_cast<std::uint32_t>(bytes.size());
  program.Allocate();
  if (!bytes.empty()) std::copy(bytes.begin(), bytes.end(), program.data);
}

void bindPlateSettings(ManagerClass& manager) {
  manager
      .def("GetGlobalComplexInfo",
           [](const Manager& self) {
             Vex2GlobalComplex info;
             const int status = self.GetGlobalComplexInfo(&info);
             return py::make_tuple(status, FromGlobal(info));
           })
      .def(
          "ReplaceGlobalComplexComp",
          [](Manager& self, const py::object& info) {
            return self.ReplaceGlobalComplexComp(ToGlobal(info).get());
          },
          py::arg("info"))
      .def(
          "AppendGlobalComplexComp",
          [](Manager& self, const PathArgument& path, const py::object& info) {
            const auto held = ToGlobal(info);
            return self.AppendGlobalComplexComp(path.Get(), held.get());
          },
          py::arg("path"), py::arg("info"))
      .def("GetMaxDyesPerWell",
           [](const Manager& self) {
             int count = 0;
             const int status = self.GetMaxDyesPerWell(count);
             return py::make_tuple(status, count);
           })
      .def("GetConfidencePercent",
           [](const Manager& self) {
             float percent = 0;
             const int status = self.GetConfidencePercent(percent);
             return py::make_tuple(status, percent);
           })
      .def("UpdateConfidencePercent", &Manager::UpdateConfidencePercent, py::arg("percent"))
      .def("GetCalibrator",
           [](const Manager& self) {
             CString name;
             const int status = self.GetCalibrator(name);
             return py::make_tuple(status, name);
           })
      .def("SetCalibrator", &Manager::SetCalibrator, py::arg("name"))
      .def("GetEndoControl",
           [](const Manager& self) {
             CString name;
             const int status = self.GetEndoControl(name);
             return py::make_tuple(status, name);
           })
      .def("SetEndoControl", &Manager::SetEndoControl, py::arg("name"))
      .def("GetRQAnalysisType",
           [](const Manager& self) {
             unsigned short type = 0;
             const int status = self.GetRQAnalysisType(type);
             return py::make_tuple(status, type);
           })
      .def("SetRQAnalysisType", &Manager::SetRQAnalysisType, py::arg("type"))
      .def("GetPassiveReference",
           [](const Manager& self) {
             CString name;
             self.GetPassiveReference(name);
             return name;
           })
      .def("SetPassiveReference", &Manager::SetPassiveReference, py::arg("name"))
      .def("GetSampleVolume", &Manager::GetSampleVolume)
      .def("SetSampleVolume", &Manager::SetSampleVolume, py::arg("volume"))
      .def("GetPrePostFlags",
           [](const Manager& self) {
             int pre = 0;
             int post = 0;
             self.GetPrePostFlags(pre, post);
             return py::make_tuple(pre, post);
           })
      .def("SetPrePostFlags", &Manager::SetPrePostFlags, py::arg("pre"), py::arg("post"));
}

void bindProgram(ManagerClass& manager) {
  manager
      .def("GetThermocycleProgramInfo",
           [](const Manager& self) {
             ThermocycleProgram program;
             const int status = self.GetThermocycleProgramInfo(&program);
             return py::make_tuple(status, FromBytes(program.data, program.length));
           })
      .def(
          "ReplaceThermocycleProgram",
          [](Manager& self, const std::optional<py::bytes>& bytes) {
            ThermocycleProgram program;
            if (bytes) setProgram(program, std::string(*bytes));
            return self.ReplaceThermocycleProgram(bytes ? &program : nullptr);
          },
          py::arg("program"))
      .def("GetThermocycleProgComp",
           [](const Manager& self) { return FromComponent(self.GetThermocycleProgComp()); });
}

std::unique_ptr<bool[]> flagsOf(const std::vector<bool>& usage, int rows, int columns) {
  const auto size = static_cast<std::int64_t>(rows) * columns;
  if (rows > 0 && columns > 0 && static_cast<std::int64_t>(usage.size()) != size) {
    throw py::value_error("usage holds a value for each well: " + std::to_string(size));
  }
  auto flags = std::make_unique<bool[]>(usage.size() + 1);
  std::copy(usage.begin(), usage.end(), flags.get());
  return flags;
}

py::tuple usageOf(const Manager& manager) {
  bool* flags = nullptr;
  const bool done = manager.GetUsageArray(flags);
  const std::unique_ptr<bool[]> owned(flags);
  py::list usage;
  const int size = done ? manager.GetHeaderData().rows * manager.GetHeaderData().columns : 0;
  for (int i = 0; i < size; ++i) usage.append(flags[i]);
  return py::make_tuple(done, usage);
}

void bindPlate(ManagerClass& manager) {
  manager
      .def(
          "ReplacePlateSetup",
          [](Manager& self, const py::object& wells) {
            Vex2PlateSetup setup;
            if (!wells.is_none()) ToSetup(wells, setup);
            return self.ReplacePlateSetup(wells.is_none() ? nullptr : &setup);
          },
          py::arg("setup"))
      .def("GetPlateSetupInfo",
           [](const Manager& self) {
             Vex2PlateSetup setup;
             const int status = self.GetPlateSetupInfo(&setup);
             return py::make_tuple(status, FromSetup(setup));
           })
      .def("GetPlateSetupComp",
           [](const Manager& self) { return FromComponent(self.GetPlateSetupComp()); })
      .def(
          "SaveSetupInfo",
          [](Manager& self, const PathArgument& path) { return self.SaveSetupInfo(path.Get()); },
          py::arg("path"))
      .def("GetPlateSize", &Manager::GetPlateSize)
      .def(
          "SetUsageArray",
          [](Manager& self, const std::vector<bool>& usage, int rows, int columns) {
            return self.SetUsageArray(flagsOf(usage, rows, columns).get(), rows, columns);
          },
          py::arg("usage"), py::arg("rows"), py::arg("columns"))
      .def_static(
          "SetUsageArrayIn",
          [](const std::vector<bool>& usage, int rows, int columns, const py::object& given) {
            Vex2HeaderData header;
            ToHeader(given, header);
            const auto flags = flagsOf(usage, rows, columns);
            const bool done = Vex2FileManager::SetUsageArray(flags.get(), rows, columns, header);
            return py::make_tuple(done, FromHeader(header));
          },
          py::arg("usage"), py::arg("rows"), py::arg("columns"), py::arg("header"))
      .def("GetUsageArray", &usageOf);
}

void bindDetectors(ManagerClass& manager) {
  manager
      .def(
          "UpdateDetectorList",
          [](Manager& self, const py::iterable& given) {
            std::vector<Vex2Detector> list;
            for (const py::handle detector : given) list.push_back(ToRawDetector(detector));
            return self.UpdateDetectorList(list.data(), static_cast<int>(list.size()));
          },
          py::arg("list"))
      .def(
          "AppendDetectorInfo",
          [](Manager& self, const py::object& given) {
            if (given.is_none()) return self.AppendDetectorInfo(nullptr);
            const Vex2Detector detector = ToRawDetector(given);
            return self.AppendDetectorInfo(&detector);
          },
          py::arg("detector"))
      .def("RemoveDetectorInfo", &Manager::RemoveDetectorInfo, py::arg("name"))
      .def(
          "AppendDetectorListToFile",
          [](Manager& self, const PathArgument& path) {
            return self.AppendDetectorListToFile(path.Get());
          },
          py::arg("path"))
      .def("GetNumberOfDetectors",
           [](const Manager& self) {
             int count = 0;
             const int status = self.GetNumberOfDetectors(count);
             return py::make_tuple(status, count);
           })
      .def("GetDetectorListInfo", [](const Manager& self) {
        Vex2Detector* list = nullptr;
        int count = 0;
        static_cast<void>(self.GetNumberOfDetectors(count));
        const int status = self.GetDetectorListInfo(list);
        const std::unique_ptr<Vex2Detector[]> owned(list);
        py::list detectors;
        for (int i = 0; list != nullptr && i < count; ++i) detectors.append(FromDetector(list[i]));
        return py::make_tuple(status, detectors);
      });
}

py::tuple calibrationOf(const Manager& manager) {
  Vex2PureDye* dye = nullptr;
  Vex2BGC* background = nullptr;
  int hasDye = 0;
  int hasBackground = 0;
  const int status = manager.GetCalibrationInfo(dye, &hasDye, background, &hasBackground);
  const std::unique_ptr<Vex2PureDye> ownedDye(dye);
  const std::unique_ptr<Vex2BGC> ownedBackground(background);
  const bool isDye = status == 0 && hasDye != 0 && dye != nullptr;
  const bool isBackground = status == 0 && hasBackground != 0 && background != nullptr;
  return py::make_tuple(status, isDye ? FromPureDye(*dye) : py::object(py::none()),
                        isBackground ? FromBackground(*background) : py::object(py::none()));
}

void bindCalibration(ManagerClass& manager) {
  manager
      .def(
          "ReplaceCalibComponent",
          [](Manager& self, const py::object& dye, const py::object& background) {
            return self.ReplaceCalibComponent(ToPureDye(dye).get(), ToBackground(background).get());
          },
          py::arg("pureDye"), py::arg("background"))
      .def(
          "ReplacePureDye",
          [](Manager& self, const py::object& record) {
            return self.ReplacePureDye(ToPureDye(record).get());
          },
          py::arg("record"))
      .def(
          "ReplaceBackground",
          [](Manager& self, const py::object& record) {
            return self.ReplaceBackground(ToBackground(record).get());
          },
          py::arg("record"))
      .def(
          "ReplaceBackground",
          [](Manager& self, const PathArgument& path, const py::object& record) {
            const auto held = ToBackground(record);
            return self.ReplaceBackground(path.Get(), held.get());
          },
          py::arg("path"), py::arg("record"))
      .def(
          "AppendPureDye",
          [](Manager& self, const PathArgument& path, const py::object& record) {
            const auto held = ToPureDye(record);
            return self.AppendPureDye(path.Get(), held.get());
          },
          py::arg("path"), py::arg("record"))
      .def(
          "AppendBackground",
          [](Manager& self, const PathArgument& path, const py::object& record) {
            const auto held = ToBackground(record);
            return self.AppendBackground(path.Get(), held.get());
          },
          py::arg("path"), py::arg("record"))
      .def("RemoveCalibComponents", &Manager::RemoveCalibComponents, py::arg("pureDye"),
           py::arg("background"))
      .def("GetCalibrationInfo", &calibrationOf)
      .def("GetPureDyeCount", &Manager::GetPureDyeCount)
      .def(
          "SaveCalibrationInfo",
          [](Manager& self, const PathArgument& path) {
            return self.SaveCalibrationInfo(path.Get());
          },
          py::arg("path"));
}

// The caller owns the elements of a list of dyes.
py::tuple dyesOf(bool done, const CObList& list) {
  py::list dyes;
  for (POSITION at = list.GetHeadPosition(); at != nullptr;) {
    const std::unique_ptr<CObject> owned(list.GetNext(at));
    const auto& info = dynamic_cast<const Vex2DyeInfo&>(*owned);
    const std::vector<std::uint32_t> values(std::begin(info.values), std::end(info.values));
    dyes.append(MakeRaw("Vex2DyeInfo", info.name, info.index, values));
  }
  return py::make_tuple(done, dyes);
}

void bindDyes(ManagerClass& manager) {
  manager
      .def("LoadDyeList",
           [](const Manager& self) {
             CObList list;
             const bool done = self.LoadDyeList(&list);
             return dyesOf(done, list);
           })
      .def(
          "LoadDyeListByName",
          [](const Manager& self, const TextArgument& plate) {
            CObList list;
            const bool done = self.LoadDyeListByName(&list, plate.Get());
            return dyesOf(done, list);
          },
          py::arg("plateName"))
      .def("AppendRequiredDyenfo", &Manager::AppendRequiredDyenfo, py::arg("dye"))
      .def(
          "UpdateRequiredDyeList",
          [](Manager& self, const std::vector<CString>& dyes) {
            return self.UpdateRequiredDyeList(dyes.data(), static_cast<int>(dyes.size()));
          },
          py::arg("dyes"))
      .def("RemoveRequiredDyeInfo", &Manager::RemoveRequiredDyeInfo, py::arg("dye"))
      .def(
          "AppendRequiredDyeListToFile",
          [](Manager& self, const PathArgument& path) {
            return self.AppendRequiredDyeListToFile(path.Get());
          },
          py::arg("path"))
      .def("GetNumberOfRequiredDyes",
           [](const Manager& self) {
             int count = 0;
             const int status = self.GetNumberOfRequiredDyes(count);
             return py::make_tuple(status, count);
           })
      .def("GetRequiredDyeListInfo", [](const Manager& self) {
        CString* list = nullptr;
        int count = 0;
        static_cast<void>(self.GetNumberOfRequiredDyes(count));
        const int status = self.GetRequiredDyeListInfo(list);
        const std::unique_ptr<CString[]> owned(list);
        py::list dyes;
        for (int i = 0; list != nullptr && i < count; ++i) dyes.append(FromText(list[i]));
        return py::make_tuple(status, dyes);
      });
}

}  // namespace

void BindContents(ManagerClass& manager) {
  bindPlateSettings(manager);
  bindProgram(manager);
  bindPlate(manager);
  bindDetectors(manager);
  bindCalibration(manager);
  bindDyes(manager);
}

}  // namespace vex2::python
