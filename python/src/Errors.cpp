#include <exception>
#include <string>

#include "lab/Error.h"
#include "lab/SystemError.h"
#include "python/src/Bindings.h"
#include "python/src/Values.h"
#include "vex2/framework/Host.h"

namespace vex2::python {

namespace {

/// A module must not write to the terminal of the program that imports it; statuses and exceptions
/// report everything.
class SilentHost final : public Host {
 public:
  void ShowMessage(const std::string& /*text*/) override {}
};

// The remedy in terms of the Python module. Empty if the library's own text is kept, because it
// names no operation or option of C++.
std::string_view textOf(lab::ErrorRemedy remedy) {
  using lab::ErrorRemedy;
  switch (remedy) {
    case ErrorRemedy::kExtractPlate:
      return "use one of its plates: vex2.open(...).plates";
    case ErrorRemedy::kEndRun:
      return "let the recorder finish, or call vex2.set_run_status if it never will";
    case ErrorRemedy::kImport:
      return "read the table with pandas and make a document of it with vex2.from_frame";
    case ErrorRemedy::kExport:
      return "vex2.open(...).tidy() makes a table of a document";
    case ErrorRemedy::kGiveDelimiter:
    case ErrorRemedy::kQuoteDecimals:
    case ErrorRemedy::kGiveDecimalMark:
    case ErrorRemedy::kTakeDecimalPoint:
    case ErrorRemedy::kTakeDecimalComma:
    case ErrorRemedy::kGiveLatin1:
    case ErrorRemedy::kGiveEncoding:
      return "read the table with pandas, which takes that as an argument";
    case ErrorRemedy::kAllowRounding:
      return "round the numbers before";
    case ErrorRemedy::kNameChannels:
      return "name all with channels=[...]";
    case ErrorRemedy::kResume:
      return "use resume=True to go on";
    case ErrorRemedy::kResumeOrReplace:
      return "use resume=True to continue it or replace=True to overwrite it";
    default:
      return {};
  }
}

// The library names its own functions in a remedy; this names those of the Python module instead.
lab::Error inTermsOfPython(const lab::Error& error) {
  const std::string_view remedy = textOf(error.Remedy());
  if (remedy.empty()) return error;
  const std::string message = std::string(error.Problem()).append("; ").append(remedy);
  if (error.File().empty()) return {error.Code(), message};
  return {error.Code(),
          error.File(),
          message,
          error.Offset(),
          lab::ErrorRemedy::kNone,
          error.SystemErrorNumber()};
}

// Raises an error of lab/ as an exception. vex2/_errors.py chooses the class of the exception.
void raise(const lab::Error& raised) {
  const lab::Error error = inTermsOfPython(raised);
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
  module.def(
      "raise_system_error",
      [](const std::string& file, int number) { throw lab::SystemError(file, number); },
      py::arg("file"), py::arg("number"), "Raises the error for a number of errno.");
  module.def("error_kinds", &errorKinds, "(name, class, meaning) of each kind of error.");
}

}  // namespace vex2::python
