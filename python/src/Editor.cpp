#include <pybind11/stl.h>

#include <memory>

#include "lab/model/DocumentEditor.h"
#include "lab/model/Settings.h"
#include "python/src/Bindings.h"
#include "python/src/Values.h"

namespace vex2::python {

namespace {

using lab::DocumentEditor;
using lab::PlateEditor;

py::tuple settingNames() {
  return TupleOf(lab::Settings(), [](const lab::Setting& setting) { return Text(setting.key); });
}

std::unique_ptr<DocumentEditor> open(const std::string& path, bool upgradeBlocks,
                                     bool dropUnknown) {
  const lab::SaveRules rules{.upgradeBlocks = upgradeBlocks,
                             .dropUnknown = dropUnknown,
                             .upgradeHint = "use upgrade_blocks=True to make it version 2",
                             .dropHint = "use drop_unknown=True to accept that"};
  const py::gil_scoped_release unlocked;
  return std::make_unique<DocumentEditor>(path, rules);
}

void bindPlateEditor(py::module_& module) {
  // The editor of a plate belongs to the editor of the document, so Python never destroys it.
  py::class_<PlateEditor, std::unique_ptr<PlateEditor, py::nodelete>>(
      module, "PlateEditor", "What a document says of a plate, to be changed.")
      .def("wells", [](PlateEditor& self) { return TupleOf(self.Wells(), FromWell); })
      .def(
          "set_wells",
          [](PlateEditor& self, const py::object& wells) {
            self.Wells() = VectorOf(wells, ToWell);
          },
          py::arg("wells"))
      .def("detectors", [](PlateEditor& self) { return TupleOf(self.Detectors(), FromDetector); })
      .def(
          "set_detectors",
          [](PlateEditor& self, const py::object& detectors) {
            self.Detectors() = VectorOf(detectors, ToDetector);
          },
          py::arg("detectors"))
      .def("required_dyes",
           [](PlateEditor& self) {
             return TupleOf(self.RequiredDyes(), [](const std::string& dye) { return Text(dye); });
           })
      .def(
          "set_required_dyes",
          [](PlateEditor& self, const std::vector<std::string>& dyes) {
            self.RequiredDyes() = dyes;
          },
          py::arg("dyes"))
      .def("calibration", [](PlateEditor& self) { return FromCalibration(self.Calibration()); })
      .def(
          "set_calibration",
          [](PlateEditor& self, const py::object& calibration) {
            self.Calibration() = ToCalibration(calibration);
          },
          py::arg("calibration"))
      .def(
          "setting",
          [](const PlateEditor& self, const std::string& name) {
            return FromValue(self.Setting(name));
          },
          py::arg("name"))
      .def(
          "set_setting",
          [](PlateEditor& self, const std::string& name, const py::object& value) {
            self.Set(name, ToValue(value));
          },
          py::arg("name"), py::arg("value"))
      .def("status", [](const PlateEditor& self) { return Text(self.Status()); })
      .def(
          "set_status", [](PlateEditor& self, const std::string& code) { self.SetStatus(code); },
          py::arg("code"));
}

}  // namespace

void BindEditor(py::module_& module) {
  module.def("setting_names", &settingNames);
  bindPlateEditor(module);
  py::class_<DocumentEditor>(module, "Editor", "Changes a document in place.")
      .def(py::init(&open), py::arg("path"), py::arg("upgrade_blocks"), py::arg("drop_unknown"))
      .def(
          "itself", [](DocumentEditor& self) -> PlateEditor& { return self; },
          py::return_value_policy::reference_internal)
      .def("plate_names", &DocumentEditor::PlateNames)
      .def(
          "plate",
          [](DocumentEditor& self, const std::string& name) -> PlateEditor& {
            return self.Plate(name);
          },
          py::arg("name"), py::return_value_policy::reference_internal)
      .def("save", [](DocumentEditor& self) {
        const py::gil_scoped_release unlocked;
        self.Save();
      });
}

}  // namespace vex2::python
