#include <pybind11/stl.h>

#include <algorithm>
#include <memory>

#include "lab/model/RunReader.h"
#include "python/src/Bindings.h"
#include "python/src/Values.h"

namespace vex2::python {

namespace {

using lab::Readings;
using lab::RunReader;

// Releases the interpreter's lock during file work, so that other Python threads can run.
template <typename Work>
auto Unlocked(const Work& work) {
  const py::gil_scoped_release unlocked;
  return work();
}

py::tuple faultsOf(const RunReader& reader) {
  return TupleOf(reader.Faults(), [](const lab::FileFault& fault) {
    return Make("Fault", fault.offset, Text(fault.what));
  });
}

py::dict settingsOf(const RunReader& reader) {
  py::dict settings;
  for (const lab::SettingValue& setting : reader.Settings()) {
    settings[Text(setting.name)] = FromValue(setting.value);
  }
  return settings;
}

py::tuple textsOf(const std::vector<std::string>& texts) {
  return TupleOf(texts, [](const std::string& text) { return Text(text); });
}

// An array of the readings without a copy. The readings never change, and exist as long as the
// array.
py::array valuesOf(const Readings& readings) {
  const std::span<const std::uint16_t> values = readings.Values();
  const py::capsule owner(new Readings(readings),
                          [](void* held) { delete static_cast<Readings*>(held); });
  py::array_t<std::uint16_t> array(
      {readings.FrameCount(), readings.WellCount(), lab::kReadingValues}, values.data(), owner);
  array.attr("setflags")(py::arg("write") = false);
  return array;
}

// Returns an array (frames, wells, channels), without channels if the meaning of the readings is
// not known.
py::array_t<double> fluorescenceOf(const Readings& readings) {
  const std::size_t channels = readings.ChannelCount();
  const std::size_t cells = readings.FrameCount() * readings.WellCount();
  py::array_t<double> array({readings.FrameCount(), readings.WellCount(), channels});
  double* const to = array.mutable_data();
  const py::gil_scoped_release unlocked;
  for (std::size_t channel = 0; channel < channels; ++channel) {
    const std::vector<double> values = readings.FluorescenceOf(channel);
    for (std::size_t cell = 0; cell < cells; ++cell) to[cell * channels + channel] = values[cell];
  }
  return array;
}

// Returns (scale, offset, channel names), or None if these are not known.
py::object meaningOf(const Readings& readings) {
  const auto& meaning = readings.Meaning();
  if (!meaning) return py::none();
  return py::make_tuple(meaning->scale.ScaleText(), meaning->scale.OffsetText(),
                        textsOf(meaning->channels));
}

void bindReadings(py::module_& module) {
  py::class_<Readings>(module, "Readings", "The readings of a data block.")
      .def("values", &valuesOf)
      .def("wells", [](const Readings& self) { return ArrayOf<std::uint16_t>(self.Wells()); })
      .def("axis", [](const Readings& self) { return FromAxis(self.Axis()); })
      .def("meaning", &meaningOf)
      .def("fluorescence", &fluorescenceOf);
}

}  // namespace

void BindReader(py::module_& module) {
  bindReadings(module);
  py::class_<RunReader>(module, "Reader", "What a plate document says.")
      .def(py::init([](const std::string& path) {
             return Unlocked([&] { return std::make_unique<RunReader>(path); });
           }),
           py::arg("path"))
      .def("is_whole", &RunReader::IsWhole)
      .def("faults", &faultsOf)
      .def("status", [](const RunReader& self) { return Text(self.StatusCode()); })
      .def("assay", [](const RunReader& self) { return Text(self.AssayCode()); })
      .def("kind", [](const RunReader& self) { return Text(self.KindCode()); })
      .def("plate_setup", [](const RunReader& self) { return FromPlate(self.Plate()); })
      .def("detectors",
           [](const RunReader& self) { return TupleOf(self.Detectors(), FromDetector); })
      .def("required_dyes", [](const RunReader& self) { return textsOf(self.RequiredDyes()); })
      .def("calibration", [](const RunReader& self) { return FromCalibration(self.Calibration()); })
      .def("settings", &settingsOf)
      .def("program", [](const RunReader& self) { return FromProgram(self.Program()); })
      .def("blocks", [](const RunReader& self) { return TupleOf(self.Blocks(), FromBlock); })
      .def(
          "frame_count",
          [](const RunReader& self, const std::string& block) { return self.FrameCount(block); },
          py::arg("block"))
      .def(
          "axis",
          [](const RunReader& self, const std::string& block) {
            return FromAxis(Unlocked([&] { return self.Axis(block); }));
          },
          py::arg("block"))
      .def(
          "frame",
          [](const RunReader& self, std::uint64_t index, const std::string& block) {
            return FromFrame(Unlocked([&] { return self.Frame(index, block); }));
          },
          py::arg("index"), py::arg("block"))
      .def(
          "readings",
          [](const RunReader& self, const std::string& block) {
            return Unlocked([&] { return self.Readings(block); });
          },
          py::arg("block"))
      .def("is_study", &RunReader::IsStudy)
      .def("plate_names", [](const RunReader& self) { return textsOf(self.PlateNames()); })
      .def(
          "plate", [](const RunReader& self, const std::string& name) { return self.Plate(name); },
          py::arg("name"));
}

}  // namespace vex2::python
