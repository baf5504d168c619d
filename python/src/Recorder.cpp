#include <pybind11/stl.h>

#include <cmath>
#include <memory>

#include "lab/Error.h"
#include "lab/record/RunRecorder.h"
#include "lab/record/ScaleChoice.h"
#include "python/src/Bindings.h"
#include "python/src/Values.h"

namespace vex2::python {

namespace {

using lab::RunRecorder;
using Numbers = py::array_t<double, py::array::c_style | py::array::forcecast>;
using Words = py::array_t<std::uint16_t, py::array::c_style>;

[[noreturn]] void refuse(const std::string& what) {
  throw lab::Error(lab::ErrorCode::kInvalidValue, what);
}

// `given` is (scale, offset), both texts, or None.
std::optional<lab::ReadingScale> scaleOf(const py::object& given) {
  if (given.is_none()) return std::nullopt;
  const auto [scaleText, offsetText] = py::cast<std::pair<std::string, std::string>>(given);
  const auto offset = lab::ReadingScale::ParseOffset(offsetText);
  if (!offset) refuse("offset is '" + offsetText + "', not a number of at most 15 digits");
  auto scale = lab::ReadingScale::Parse(scaleText, *offset);
  if (!scale) refuse("scale is '" + scaleText + "', not a number above 0 such as 1000 or 1000/3");
  return scale;
}

std::vector<lab::SettingValue> settingsOf(const py::dict& settings) {
  std::vector<lab::SettingValue> values;
  for (const auto& [name, value] : settings) {
    values.push_back({Given<std::string>(name, "a setting's name"), ToValue(value)});
  }
  return values;
}

// `given` holds the arguments of vex2.record by name.
lab::RecordingPlan planOf(const py::dict& given) {
  lab::RecordingPlan plan;
  const py::object plate = given["plate"];
  plan.plate.rows = plate.attr("rows").cast<std::uint32_t>();
  plan.plate.columns = plate.attr("columns").cast<std::uint32_t>();
  plan.plate.wells = VectorOf(plate.attr("wells"), ToWell);
  plan.wells = Given<std::vector<std::uint16_t>>(given["wells"], "wells");
  plan.detectors = VectorOf(given["detectors"], ToDetector);
  plan.requiredDyes = Given<std::vector<std::string>>(given["required_dyes"], "required_dyes");
  plan.settings = settingsOf(given["settings"]);
  const auto program = Given<std::string>(given["program"], "program");
  plan.program.assign(program.begin(), program.end());
  plan.comment = Given<std::string>(given["comment"], "comment");
  plan.calibration = ToCalibration(given["calibration"]);
  plan.assay = Given<std::string>(given["assay"], "assay");
  plan.started = Given<std::optional<std::string>>(given["started"], "started");
  plan.scale = scaleOf(given["scale"]);
  plan.channels = Given<std::vector<std::string>>(given["channels"], "channels");
  plan.frameCount = Given<std::optional<std::size_t>>(given["frame_count"], "frame_count");
  return plan;
}

std::unique_ptr<RunRecorder> openRecorder(const std::string& path, const py::dict& given,
                                          bool resume, bool replace) {
  const lab::RecordingPlan plan = planOf(given);
  const py::gil_scoped_release unlocked;
  return std::make_unique<RunRecorder>(path, plan,
                                       lab::RecorderOptions{.resume = resume, .replace = replace});
}

// `leading` has the shape (wells, 8) and `readings` (wells, 32), both in the order of `wells`.
void appendRaw(RunRecorder& recorder, const Words& wells, const Words& leading,
               const Words& readings) {
  std::vector<lab::RawRecord> frame(static_cast<std::size_t>(wells.size()));
  for (std::size_t i = 0; i < frame.size(); ++i) {
    const auto row = static_cast<py::ssize_t>(i);
    frame[i].well = wells.at(row);
    std::copy_n(leading.data(row, 0), frame[i].leading.size(), frame[i].leading.begin());
    std::copy_n(readings.data(row, 0), frame[i].readings.size(), frame[i].readings.begin());
  }
  const py::gil_scoped_release unlocked;
  recorder.Append(frame);
}

// `values` has the shape (wells, channels), with NaN for a missing reading. There is a time and a
// temperature for each well. All are in the order of `wells`.
void appendMeasured(RunRecorder& recorder, const Words& wells, bool isMelting, std::uint16_t cycle,
                    const Numbers& times, const Numbers& temperatures, const Numbers& values) {
  lab::MeasuredFrame frame{.stage = isMelting ? lab::Stage::kMelting : lab::Stage::kAmplification,
                           .cycle = cycle,
                           .wells = {}};
  for (py::ssize_t row = 0; row < wells.size(); ++row) {
    lab::MeasuredWell& well = frame.wells.emplace_back();
    well.well = wells.at(row);
    well.time = times.at(row);
    well.temperature = temperatures.at(row);
    for (py::ssize_t channel = 0; channel < values.shape(1); ++channel) {
      const double value = values.at(row, channel);
      well.values.push_back(std::isnan(value) ? std::nullopt : std::optional(value));
    }
  }
  const py::gil_scoped_release unlocked;
  recorder.Append(frame);
}

py::tuple chooseScale(const std::vector<double>& readings) {
  const lab::ReadingScale scale = lab::ChooseScale(readings, std::nullopt);
  return py::make_tuple(scale.ScaleText(), scale.OffsetText());
}

}  // namespace

void BindRecorder(py::module_& module) {
  module.def("choose_scale", &chooseScale, py::arg("readings"));
  py::class_<RunRecorder>(module, "Recorder", "Records a run to a document.")
      .def(py::init(&openRecorder), py::arg("path"), py::arg("plan"), py::arg("resume"),
           py::arg("replace"))
      .def("recorded_frames", &RunRecorder::RecordedFrames)
      .def("frame_count", &RunRecorder::FrameCount)
      .def("is_finished", &RunRecorder::IsFinished)
      .def("append_raw", &appendRaw, py::arg("wells"), py::arg("leading"), py::arg("readings"))
      .def("append_measured", &appendMeasured, py::arg("wells"), py::arg("is_melting"),
           py::arg("cycle"), py::arg("times"), py::arg("temperatures"), py::arg("values"))
      .def("finish", [](RunRecorder& self) {
        const py::gil_scoped_release unlocked;
        self.Finish();
      });
}

}  // namespace vex2::python
