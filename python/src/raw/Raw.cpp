#include "python/src/Bindings.h"
namespace vex2::python {
void BindRawValues(pybind11::module_&) {}
void BindRawManager(pybind11::module_&) {}
}  // namespace vex2::python
