#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "vex2/manager/Vex2FileManager.h"

/// Converts between the values of the raw interface and the classes of vex2/raw.py, bytes and
/// arrays. Texts are str, in which each character is one byte.
namespace vex2::python {

namespace py = pybind11;

/// A path, or None for a null pointer in C++.
struct PathArgument {
  std::optional<std::string> text;
  const char* Get() const { return text ? text->c_str() : nullptr; }
};
/// A text, or None for a null pointer in C++.
struct TextArgument {
  std::optional<std::string> text;
  bool isBytes = false;  ///< given as bytes
  const char* Get() const { return text ? text->c_str() : nullptr; }
};

/// Calls the class `name` in vex2/raw.py.
template <typename... Arguments>
py::object MakeRaw(const char* name, Arguments&&... arguments) {
  return py::module_::import("vex2.raw").attr(name)(std::forward<Arguments>(arguments)...);
}

py::str FromText(const CString& text);
CString ToText(const py::handle& text);
py::bytes FromBytes(const void* data, std::size_t size);

py::object FromHeader(const Vex2HeaderData& header);
void ToHeader(const py::handle& from, Vex2HeaderData& header);

TimeStamp ToTime(const py::bytes& bytes);
/// Returns a uint16 array (wells, 44).
py::array_t<std::uint16_t> FromFrame(const Vex2FrameData& frame);
/// Converts an array (wells, up to 44) of 16-bit whole numbers.
Vex2FrameData ToFrame(const py::handle& array);
py::array_t<std::uint16_t> FromRecord(const Vex2WellRecord& record);
Vex2WellRecord ToRecord(const py::handle& array);

py::object FromGlobal(const Vex2GlobalComplex& info);
std::unique_ptr<Vex2GlobalComplex> ToGlobal(const py::handle& info);

py::list FromSetup(const Vex2PlateSetup& setup);
void ToSetup(const py::handle& wells, Vex2PlateSetup& setup);
py::object FromDetector(const Vex2Detector& detector);
Vex2Detector ToRawDetector(const py::handle& detector);
py::object FromPureDye(const Vex2PureDye& dye);
py::object FromBackground(const Vex2BGC& background);
/// Returns null for None.
std::unique_ptr<Vex2PureDye> ToPureDye(const py::handle& record);
std::unique_ptr<Vex2BGC> ToBackground(const py::handle& record);

py::object FromSettings(const CAnalysisSettings& settings);
std::unique_ptr<CAnalysisSettings> ToSettings(const py::handle& settings);
TAGPROBE ToProbe(const py::handle& probe);

/// Returns a copy of the component, which stays valid without the document; None for null.
py::object FromComponent(CComponent* component);
py::list FromTexts(const CStringList& list);

}  // namespace vex2::python

namespace pybind11::detail {

template <>
struct type_caster<CString> {
  PYBIND11_TYPE_CASTER(CString, const_name("str"));
  bool load(handle source, bool /*convert*/) {
    if (!isinstance<str>(source) && !isinstance<bytes>(source)) return false;
    value = vex2::python::ToText(source);
    return true;
  }
  static handle cast(const CString& text, return_value_policy /*policy*/, handle /*parent*/) {
    return vex2::python::FromText(text).release();
  }
};

template <>
struct type_caster<vex2::python::TextArgument> {
  PYBIND11_TYPE_CASTER(vex2::python::TextArgument, const_name("Optional[str]"));
  bool load(handle source, bool /*convert*/) {
    if (source.is_none()) return true;
    if (!isinstance<str>(source) && !isinstance<bytes>(source)) return false;
    value.text = std::string(vex2::python::ToText(source).View());
    value.isBytes = isinstance<bytes>(source);
    return true;
  }
};

template <>
struct type_caster<vex2::python::PathArgument> {
  PYBIND11_TYPE_CASTER(vex2::python::PathArgument, const_name("Optional[os.PathLike]"));
  bool load(handle source, bool /*convert*/) {
    if (source.is_none()) return true;
    const object path = reinterpret_steal<object>(PyOS_FSPath(source.ptr()));
    PyObject* encoded = nullptr;
    if (!path || PyUnicode_FSConverter(path.ptr(), &encoded) == 0) {
      PyErr_Clear();
      return false;
    }
    value.text = std::string(reinterpret_steal<bytes>(encoded));
    return true;
  }
};

}  // namespace pybind11::detail
