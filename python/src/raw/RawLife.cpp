// Binds reading and saving a document, its components and its header.
#include "python/src/Bindings.h"
#include "python/src/raw/RawManager.h"
#include "vex2/framework/CFileException.h"

namespace vex2::python {

namespace {

py::arg_v noneBy(const char* name) {
  return py::arg(name) = py::none();
}

// None means the manager's own file, which is null in C++.
CFile* fileOf(Manager* manager) {
  return manager;
}

py::object faultOf(const Manager& manager) {
  const ReadFault& fault = manager.GetReadFault();
  return MakeRaw("ReadFault", fault.offset, FromText(fault.reason));
}

py::object errorOf(const Manager& manager) {
  const FileError& error = manager.GetLastFileError();
  const std::string path(error.path.View());
  return MakeRaw("FileErrorRecord",
                 py::reinterpret_steal<py::object>(PyUnicode_DecodeFSDefaultAndSize(
                     path.data(), static_cast<py::ssize_t>(path.size()))),
                 static_cast<int>(error.operation), static_cast<int>(error.reason),
                 error.systemError, error.offset);
}

py::str pathOf(const CString& path) {
  const std::string_view text = path.View();
  return py::reinterpret_steal<py::str>(
      PyUnicode_DecodeFSDefaultAndSize(text.data(), static_cast<py::ssize_t>(text.size())));
}

py::tuple readHeaderInto(Manager& manager, Manager* file) {
  Vex2HeaderData header;
  const int status = manager.ReadHeaderData(header, fileOf(file));
  return py::make_tuple(status, status == 0 ? FromHeader(header) : py::object(py::none()));
}

// An operation on the open file throws CFileException in C++, which becomes an OSError.
template <typename Work>
auto orSystemError(const Work& work) {
  try {
    return work();
  } catch (const CFileException& failure) {
    errno = failure.GetError();
    PyErr_SetFromErrnoWithFilename(PyExc_OSError, failure.GetPath().c_str());
    throw py::error_already_set();
  }
}

void bindFile(ManagerClass& manager) {
  manager.def("IsOpen", &Manager::IsOpen)
      .def("Close", [](Manager& self) { orSystemError([&] { self.Close(); }); })
      .def("Abort", [](Manager& self) { self.Abort(); })
      .def("GetLength", [](const Manager& self) { return self.GetLength(); })
      .def("GetPosition", [](const Manager& self) { return self.GetPosition(); })
      .def(
          "Seek",
          [](Manager& self, std::int64_t offset, int from) {
            if (from < 0 || from > 2) throw py::value_error("from is 0, 1 or 2");
            return orSystemError(
                [&] { return self.Seek(offset, static_cast<CFile::SeekPosition>(from)); });
          },
          py::arg("offset"), py::arg("origin") = 0)
      .def(
          "Read",
          [](Manager& self, std::size_t count) {
            std::string bytes(std::min<std::uint64_t>(count, self.GetRemaining()), '\0');
            const std::size_t read =
                orSystemError([&] { return self.Read(bytes.data(), bytes.size()); });
            return py::bytes(bytes.data(), read);
          },
          py::arg("count"));
}

void bindComponents(ManagerClass& manager) {
  manager.def("GetAllComponentCount", &Manager::GetAllComponentCount)
      .def("GetComponentTagList",
           [](const Manager& self) {
             CStringList tags;
             const bool done = self.GetComponentTagList(tags);
             return py::make_tuple(done, FromTexts(tags));
           })
      .def(
          "GetComponent",
          [](const Manager& self, int index) { return FromComponent(self.GetComponent(index)); },
          py::arg("index"))
      .def("initTestData", &Manager::initTestData)
      .def("IsAcquisitionDataAvailable", &Manager::IsAcquisitionDataAvailable);
}

}  // namespace

void BindLife(ManagerClass& manager) {
  bindFile(manager);
  bindComponents(manager);
  manager.def(py::init<>())
      .def(py::init([](const Manager& other) { return std::make_unique<Manager>(other); }),
           py::arg("other"))
      .def("__copy__", [](const Manager& self) { return std::make_unique<Manager>(self); })
      .def(
          "__deepcopy__",
          [](const Manager& self, const py::dict& /*memo*/) {
            return std::make_unique<Manager>(self);
          },
          py::arg("memo"))
      .def(
          "Assign", [](Manager& self, const Manager& other) { self = other; }, py::arg("other"))
      .def("GetRuntimeClass", [](const Manager& self) { return self.GetRuntimeClass()->name; })
      .def_static("ClassRecord", [] { return Vex2FileManager::ClassRecord()->name; })
      .def("GetFileName", [](const Manager& self) { return pathOf(self.GetFileName()); })
      .def("GetFileTitle", [](const Manager& self) { return pathOf(self.GetFileTitle()); })
      .def("GetFilePath", [](const Manager& self) { return pathOf(self.GetFilePath()); })
      .def(
          "WriteComponentFile",
          [](Manager& self, Manager* file) { return self.WriteComponentFile(fileOf(file)); },
          noneBy("file"))
      .def(
          "ReadComponentFile",
          [](Manager& self, Manager* file) { return self.ReadComponentFile(fileOf(file)); },
          noneBy("file"))
      .def(
          "ReadHeaderData",
          [](Manager& self, Manager* file) { return self.ReadHeaderData(fileOf(file)); },
          noneBy("file"))
      .def("ReadHeaderDataInto", &readHeaderInto, noneBy("file"))
      .def(
          "WriteHeaderData",
          [](Manager& self, Manager* file) { return self.WriteHeaderData(fileOf(file)); },
          noneBy("file"))
      .def("Reset", &Manager::Reset)
      .def(
          "SafeOpen",
          [](Manager& self, const PathArgument& path, int write, int append) {
            return self.SafeOpen(path.Get(), write, append);
          },
          py::arg("path"), py::arg("write"), py::arg("append"))
      .def(
          "ReadFromFile",
          [](Manager& self, const PathArgument& path, bool dialog) {
            return self.ReadFromFile(path.Get(), dialog);
          },
          py::arg("path"), py::arg("dialog") = false)
      .def(
          "SaveToFile",
          [](Manager& self, const PathArgument& path, bool dialog) {
            return self.SaveToFile(path.Get(), dialog);
          },
          py::arg("path"), py::arg("dialog") = false)
      .def(
          "SaveHeader",
          [](Manager& self, const PathArgument& path, const py::object& given) {
            Vex2HeaderData header;
            ToHeader(given, header);
            return self.SaveHeader(path.Get(), header);
          },
          py::arg("path"), py::arg("header"))
      .def("IsWhole", &Manager::IsWhole)
      .def("GetReadFault", &faultOf)
      .def("GetLastFileError", &errorOf);
}

void BindHeader(ManagerClass& manager) {
  manager.def("GetHeaderData", [](const Manager& self) { return FromHeader(self.GetHeaderData()); })
      .def(
          "SetHeaderData",
          [](Manager& self, const py::object& given) {
            Vex2HeaderData header;
            ToHeader(given, header);
            self.SetHeaderData(header);
          },
          py::arg("header"))
      .def("GetHeaderRows", [](Manager& self) { return self.GetHeaderRows(); })
      .def("GetHeaderCols", [](Manager& self) { return self.GetHeaderCols(); })
      .def("GetHeaderBytes", &Manager::GetHeaderBytes)
      .def(
          "SetFilePath",
          [](Manager& self, const PathArgument& path) { self.SetFilePath(path.Get()); },
          py::arg("path"))
      .def("IsVex2Format", &Manager::IsVex2Format)
      .def("IsBlueLightSpecialFile", &Manager::IsBlueLightSpecialFile)
      .def("IsKestorFile", &Manager::IsKestorFile)
      .def("IsAssayType", &Manager::IsAssayType, py::arg("type"))
      .def("IsBackground", &Manager::IsBackground)
      .def("IsPureSpectra", &Manager::IsPureSpectra)
      .def("IsAQ", &Manager::IsAQ)
      .def("IsRQP", &Manager::IsRQP)
      .def("IsRQS", &Manager::IsRQS)
      .def("IsAD", &Manager::IsAD)
      .def("IsPM", &Manager::IsPM)
      .def("IsRealTime", &Manager::IsRealTime)
      .def("IsPlateRead", &Manager::IsPlateRead)
      .def("GetAcquisitionStatus", &Manager::GetAcquisitionStatus)
      .def(
          "SetAcquisitionStatus",
          [](Manager& self, const TextArgument& status) {
            return self.SetAcquisitionStatus(status.Get());
          },
          py::arg("status"))
      .def(
          "SetAcquisitionStatus",
          [](Manager& self, const PathArgument& path, const TextArgument& status) {
            return self.SetAcquisitionStatus(path.Get(), status.Get());
          },
          py::arg("path"), py::arg("status"))
      .def("IsAcquisitionZero", &Manager::IsAcquisitionZero)
      .def("IsAcquisitionProg", &Manager::IsAcquisitionProg)
      .def("IsAcquisitionDone", &Manager::IsAcquisitionDone);
}

void BindRaw(py::module_& module) {
  BindNumbers(module);
  ManagerClass manager(module, "Vex2FileManager",
                       "One plate document in memory, with the operations that read it from a "
                       "file, change it and bring it to the disk: see vex2.raw.");
  BindLife(manager);
  BindHeader(manager);
  BindContents(manager);
  BindReadings(manager);
  BindStudy(manager);
  BindResults(manager);
}

}  // namespace vex2::python
