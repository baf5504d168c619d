#include <exception>

#include "lab/Error.h"
#include "python/src/Bindings.h"
#include "python/src/Values.h"
#include "vex2/framework/Host.h"

namespace vex2::python {

namespace {

/// A module writes nothing to the terminal of the program that imports it: what the library has to
/// say is in statuses and exceptions.
class SilentHost final : public Host {
 public:
  void ShowMessage(const std::string& /*text*/) override {}
};

// Errors of lab/ become those of vex2/_errors.py, which chooses the class.
void raise(const lab::Error& error) {
  const lab::ErrorKind& kind = lab::ErrorKindOf(error.Code());
  const py::object offset = OrNone(error.Offset());
  const py::object made =
      py::module_::import("vex2._errors")
          .attr("_make")(Text(kind.name), PathText(error.File()), Text(error.Message()),
                         Text(error.what()), offset, error.SystemErrorNumber());
  PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(made.ptr())), made.ptr());
}

void translate(std::exception_ptr thrown) {
  try {
    if (thrown) std::rethrow_exception(thrown);
  } catch (const lab::Error& error) {
    try {
      raise(error);
    } catch (py::error_already_set& failure) {
      failure.restore();
    }
  }
}

py::tuple errorKinds() {
  return TupleOf(lab::ErrorKinds(), [](const lab::ErrorKind& kind) {
    return py::make_tuple(Text(kind.name), static_cast<int>(kind.errorClass), Text(kind.meaning));
  });
}

}  // namespace

void BindErrors(py::module_& module) {
  static SilentHost host;
  SetHost(&host);
  py::register_exception_translator(&translate);
  module.def("error_kinds", &errorKinds, "(name, class, meaning) of each kind of error.");
}

}  // namespace vex2::python
