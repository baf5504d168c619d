#include "python/src/Bindings.h"

PYBIND11_MODULE(_vex2, module) {
  module.doc() = "The compiled part of vex2: import vex2 instead.";
  module.attr("__version__") = VEX2_VERSION;
  vex2::python::BindErrors(module);
  vex2::python::BindReader(module);
  vex2::python::BindRecords(module);
  vex2::python::BindAnalysis(module);
  vex2::python::BindChecks(module);
  vex2::python::BindEditor(module);
  vex2::python::BindRecorder(module);
  vex2::python::BindFollower(module);
  vex2::python::BindReplacement(module);
  vex2::python::BindRaw(module);
}
