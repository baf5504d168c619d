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

void addCurves(const RunReader& run, const Readings& readings, const StageReadings& stage,
               const std::string& plate, std::vector<AmplificationCurve>& curves) {
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
    curve.isPlateMeasured = !stage.frames.empty();
  }
}

}  // namespace

PlateCurves PlateCurvesOf(const RunReader& run) {
  return Guarded(run.Path().string(), [&] {
    PlateCurves result;
    result.skipped = ForEachStage(
        run, Stage::kAmplification,
        [&](const RunReader& plate, const Readings& readings, const StageReadings& stage,
            const std::string& name) { addCurves(plate, readings, stage, name, result.curves); });
    return result;
  });
}

std::vector<AmplificationCurve> AmplificationCurvesOf(const RunReader& run) {
  return PlateCurvesOf(run).curves;
}

std::vector<AmplificationCurve> AmplificationCurvesOf(const RunReader& run,
                                                      const Readings& readings) {
  return Guarded(run.Path().string(), [&] {
    std::vector<AmplificationCurve> curves;
    const std::string path = run.Path().string();
    addCurves(run, readings, StageReadingsOf(path, readings, Stage::kAmplification), {}, curves);
    return curves;
  });
}

}  // namespace vex2::lab
