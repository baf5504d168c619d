#include <pybind11/stl.h>

#include "lab/Error.h"
#include "lab/analysis/Cq.h"
#include "lab/analysis/Melt.h"
#include "python/src/Bindings.h"
#include "python/src/Values.h"

namespace vex2::python {

namespace {

using lab::CqAnalysis;
using lab::CqOptions;
using Range = std::optional<std::pair<double, double>>;

lab::CqMethod methodOf(const std::string& name) {
  for (const lab::CqMethod method : {lab::CqMethod::kThreshold, lab::CqMethod::kSecondDerivative}) {
    if (name == lab::NameOf(method)) return method;
  }
  throw lab::Error(lab::ErrorCode::kInvalidValue,
                   "method is '" + name + "', not 'threshold' or 'sdm'");
}

// Returns (plate, well, number, sample, target, task, quantity).
py::tuple fromWell(const lab::AnalysedWell& well) {
  return py::make_tuple(Text(well.plate), Text(well.name), well.number, Text(well.sample),
                        Text(well.detector), Text(well.task), OrNone(well.quantity));
}

py::tuple fromResult(const lab::CqResult& result) {
  const auto& estimate = result.estimate;
  const auto& baseline = result.baseline;
  const py::object none = py::none();
  return fromWell(result.curve.well) +
         py::make_tuple(OrNone(result.cq),
                        result.reason ? py::object(Text(lab::NameOf(*result.reason))) : none,
                        Text(result.note), OrNone(result.threshold),
                        baseline ? py::object(py::float_(baseline->first)) : none,
                        baseline ? py::object(py::float_(baseline->last)) : none, result.amplitude,
                        result.noise, estimate ? py::object(py::float_(estimate->quantity)) : none,
                        estimate ? py::object(py::float_(estimate->low)) : none,
                        estimate ? py::object(py::float_(estimate->high)) : none);
}

py::tuple fromCurve(const lab::StandardCurve& curve) {
  return py::make_tuple(Text(curve.detector), curve.wells, curve.slope, curve.intercept,
                        OrNone(curve.efficiency), OrNone(curve.efficiencyLow),
                        OrNone(curve.efficiencyHigh), curve.rSquared, curve.rSquaredOfMeans,
                        curve.residualDeviation, OrNone(curve.limitOfDetection));
}

// Returns (a tuple for each well, a tuple for each standard curve).
py::tuple analyseCq(const lab::RunReader& run, const std::string& method,
                    const std::optional<double>& threshold, const Range& baseline,
                    const std::optional<std::string>& detector) {
  CqOptions options{.method = methodOf(method),
                    .threshold = threshold,
                    .baseline = std::nullopt,
                    .detector = detector};
  if (baseline)
    options.baseline = lab::CycleRange{.first = baseline->first, .last = baseline->second};
  CqAnalysis analysis;
  {
    const py::gil_scoped_release unlocked;
    analysis = lab::AnalyseCq(run, options);
  }
  py::list curves;
  for (const lab::DetectorResult& found : analysis.detectors) {
    if (found.curve) curves.append(fromCurve(*found.curve));
  }
  return py::make_tuple(TupleOf(analysis.wells, fromResult), py::tuple(curves));
}

// Returns a tuple for each peak.
py::tuple analyseMelt(const lab::RunReader& run, const std::optional<std::string>& detector) {
  std::vector<lab::MeltCurve> curves;
  {
    const py::gil_scoped_release unlocked;
    curves = lab::AnalyseMelt(run, detector);
  }
  py::list peaks;
  for (const lab::MeltCurve& curve : curves) {
    for (const lab::MeltPeak& peak : curve.peaks) {
      peaks.append(fromWell(curve.well) +
                   py::make_tuple(peak.temperature, peak.height, peak.width, peak.prominence));
    }
  }
  return py::tuple(peaks);
}

}  // namespace

void BindAnalysis(py::module_& module) {
  module.def("analyse_cq", &analyseCq, py::arg("reader"), py::arg("method"), py::arg("threshold"),
             py::arg("baseline"), py::arg("detector"));
  module.def("analyse_melt", &analyseMelt, py::arg("reader"), py::arg("detector"));
}

}  // namespace vex2::python
