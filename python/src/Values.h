#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lab/model/Calibration.h"
#include "lab/model/Readings.h"
#include "lab/model/Run.h"
#include "lab/model/Value.h"
#include "vex2/manager/Vex2HeaderData.h"

/// Converts between the values of lab/ and the named tuples of vex2/_values.py.
namespace vex2::python {

namespace py = pybind11;

/// Calls the class `name` in vex2/_values.py.
template <typename... Arguments>
py::object Make(const char* name, Arguments&&... arguments) {
  return py::module_::import("vex2._values").attr(name)(std::forward<Arguments>(arguments)...);
}

/// A text of a document. It is UTF-8 unless the file is damaged.
py::str Text(std::string_view utf8);
/// A path in the encoding of the system.
py::str PathText(const std::string& path);
/// A text in which each character is one byte.
py::str Latin1(std::string_view bytes);

/// Throws the error for a value of the wrong type.
[[noreturn]] void RefuseValue(const py::handle& value, std::string_view name);

/// Converts the Python value of the argument `name`.
template <typename Value>
Value Given(const py::handle& value, std::string_view name) {
  try {
    return py::cast<Value>(value);
  } catch (const py::cast_error&) {
    RefuseValue(value, name);
  }
}

/// Converts an optional; None if it is empty.
template <typename Content>
py::object OrNone(const std::optional<Content>& content) {
  return content ? py::cast(*content) : py::none();
}

/// A tuple of the items, converted with `convert`.
template <typename Items, typename Convert>
py::tuple TupleOf(const Items& items, const Convert& convert) {
  py::tuple tuple(std::size(items));
  std::size_t index = 0;
  for (const auto& item : items) tuple[index++] = convert(item);
  return tuple;
}

/// The items of a Python iterable, converted with `convert`.
template <typename Convert>
auto VectorOf(const py::handle& items, const Convert& convert) {
  std::vector<decltype(convert(py::object()))> values;
  for (const py::handle item : py::iter(items)) {
    values.push_back(convert(py::reinterpret_borrow<py::object>(item)));
  }
  return values;
}

/// A new NumPy array with a copy of these numbers.
template <typename Number>
py::array_t<Number> ArrayOf(std::span<const Number> numbers) {
  return py::array_t<Number>(static_cast<py::ssize_t>(numbers.size()), numbers.data());
}

py::object FromValue(const lab::Value& value);
lab::Value ToValue(const py::handle& value);

/// The masks of the rows in the header's table of used wells.
py::tuple MasksOf(const Vex2HeaderData& header);

py::object FromWell(const lab::Well& well);
lab::Well ToWell(const py::handle& well);
py::object FromPlate(const lab::Plate& plate);
py::object FromDetector(const lab::Detector& detector);
lab::Detector ToDetector(const py::handle& detector);
py::object FromCalibration(const lab::Calibration& calibration);
lab::Calibration ToCalibration(const py::handle& calibration);
py::object FromProgram(const std::optional<lab::Program>& program);
py::object FromBlock(const lab::BlockInfo& block);
/// Returns (stage, cycle, time_s, temperature_c), each None if it is not known.
py::tuple FromPosition(const lab::FramePosition& position);
/// Returns (index, position, well numbers, leading values, stored readings, fluorescence).
py::tuple FromFrame(const lab::Frame& frame);
/// Returns the arrays (stages, cycles, times, temperatures). A stage is 0 for none, 1 for
/// amplification, 2 for melting.
py::tuple FromAxis(const std::vector<lab::FramePosition>& axis);

}  // namespace vex2::python
