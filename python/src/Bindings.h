#pragma once

#include <pybind11/pybind11.h>

/// The parts of the compiled module. Each is defined in a separate source.
namespace vex2::python {

/// Binds the exceptions, and installs a host that prints nothing.
void BindErrors(pybind11::module_& module);
void BindReader(pybind11::module_& module);
void BindRecords(pybind11::module_& module);
/// Binds quantification cycles, standard curves and melting peaks.
void BindAnalysis(pybind11::module_& module);
void BindChecks(pybind11::module_& module);
void BindEditor(pybind11::module_& module);
void BindRecorder(pybind11::module_& module);
void BindFollower(pybind11::module_& module);
void BindReplacement(pybind11::module_& module);
/// Binds the document of the raw interface, whose operations have their C++ names.
void BindRaw(pybind11::module_& module);

}  // namespace vex2::python
