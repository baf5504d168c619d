#include "lab/analysis/AmplificationCurve.h"

#include <algorithm>
#include <limits>

#include "lab/Guarded.h"
#include "lab/analysis/StageReadings.h"

namespace vex2::lab {

namespace {

std::size_t countAtLimit(const AnalysedSource& source, const StageReadings& stage,
                         const Readings& readings) {
  return static_cast<std::size_t>(
      std::count_if(stage.frames.begin(), stage.frames.end(), [&](std::size_t frame) {
        return readings.At(frame, *source.index, *source.channel) ==
               std::numeric_limits<std::uint16_t>::max();
      }));
}

void addCurves(const RunReader& run, const Readings& readings, const std::string& plate,
               std::vector<AmplificationCurve>& curves) {
  const StageReadings stage = StageReadingsOf(run.Path().string(), readings, Stage::kAmplification);
  for (AnalysedSource& source : SourcesOf(run, readings, stage.channels)) {
    AmplificationCurve& curve = curves.emplace_back();
    curve.readings = ReadingsOf(source, stage, readings.WellCount());
    if (!curve.readings.empty()) {
      curve.cycles = stage.axis;
      curve.atStoredLimit = countAtLimit(source, stage, readings);
    }
    if (source.channel) curve.channel = stage.channels[*source.channel];
    curve.reporter = std::move(source.reporter);
    curve.well = std::move(source.well);
    curve.well.plate = plate;
  }
}

}  // namespace

std::vector<AmplificationCurve> AmplificationCurvesOf(const RunReader& run) {
  return Guarded(run.Path().string(), [&] {
    std::vector<AmplificationCurve> curves;
    ForEachPlate(run, [&](const RunReader& plate, const std::string& name) {
      addCurves(plate, plate.Readings(), name, curves);
    });
    return curves;
  });
}

std::vector<AmplificationCurve> AmplificationCurvesOf(const RunReader& run,
                                                      const Readings& readings) {
  return Guarded(run.Path().string(), [&] {
    std::vector<AmplificationCurve> curves;
    addCurves(run, readings, {}, curves);
    return curves;
  });
}

}  // namespace vex2::lab
