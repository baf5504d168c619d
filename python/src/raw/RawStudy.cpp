// Binds the plates of a study.
#include "python/src/raw/RawManager.h"

namespace vex2::python {

namespace {

// Returns a copy, because the plate that the study owns is destroyed when the study changes.
py::object plateOf(const Manager& manager, const CString& name) {
  const Vex2FileManagerComponent* plate = manager.GetSinglePlatePtrByName(name);
  if (plate == nullptr) return py::none();
  return py::cast(std::make_unique<Manager>(*plate));
}

py::tuple readPlate(Manager& manager, const py::object& parent, const PathArgument& path,
                    bool choose) {
  if (!parent.is_none()) throw py::type_error("parent is None: there are no windows");
  CString modified;
  const int status = manager.ReadRQPFromFile(nullptr, path.Get(), choose, modified);
  return py::make_tuple(status, modified);
}

}  // namespace

void BindStudy(ManagerClass& manager) {
  manager.def("InitMultiplate", &Manager::InitMultiplate)
      .def(
          "AddRQPlate",
          [](Manager& self, const Manager* plate, const CString& modified) {
            return self.AddRQPlate(plate, modified);
          },
          py::arg("plate"), py::arg("lastModified"))
      .def("RemoveRQPlate", &Manager::RemoveRQPlate, py::arg("name"))
      .def("GetMultiPlateList",
           [](const Manager& self) {
             CStringList names;
             CStringList dates;
             const bool done = self.GetMultiPlateList(names, dates);
             return py::make_tuple(done, FromTexts(names), FromTexts(dates));
           })
      .def("GetRQPlateCount", &Manager::GetRQPlateCount)
      .def("GetNumPlates", &Manager::GetNumPlates)
      .def("GetSinglePlatePtrByName", &plateOf, py::arg("name"))
      .def("AppendPlateName", &Manager::AppendPlateName, py::arg("name"))
      .def("GetPlateName",
           [](const Manager& self) {
             CString name;
             const int status = self.GetPlateName(name);
             return py::make_tuple(status, name);
           })
      .def("AppendLastModifiedDate", &Manager::AppendLastModifiedDate, py::arg("date"))
      .def("GetLastModifiedDate",
           [](const Manager& self) {
             CString date;
             const int status = self.GetLastModifiedDate(date);
             return py::make_tuple(status, date);
           })
      .def("ConvertAQ2RQ", &Manager::ConvertAQ2RQ)
      .def("ReadRQPFromFile", &readPlate, py::arg("parent"), py::arg("path"), py::arg("choose"))
      .def_static("RQSOpenFile", [](const py::args& /*arguments*/) {
        CString path;
        CString folder;
        const bool done = Vex2FileManager::RQSOpenFile(nullptr, path, folder, nullptr, nullptr,
                                                       nullptr, nullptr, nullptr, 0);
        return py::make_tuple(done, path, folder);
      });
}

}  // namespace vex2::python
