#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lab/analysis/AmplificationCurve.h"

namespace vex2::lab {

/// The readings of one stage of a plate, by channel.
struct StageReadings {
  /// Indexes of the frames of the stage, from 0, in the order of the run.
  std::vector<std::size_t> frames;
  std::vector<double> axis;  ///< for each frame its cycle, or its temperature in a melting stage
  /// Names of the channels; a single channel may have an empty name.
  std::vector<std::string> channels;
  std::vector<std::vector<double>> fluorescence;  ///< for each channel, by frame and then by well
};

/// Why `readings` cannot be analysed in `stage`, as "it has no frames of readings"; nothing if they
/// can.
std::optional<std::string> WhyNotAnalysed(const Readings& readings, Stage stage);

/// The readings of `stage`. Throws `Error` of class `kDocument` about the file at `path` if the
/// stage has no readings with a known meaning.
StageReadings StageReadingsOf(const std::string& path, const Readings& readings, Stage stage);

/// A well, one of its detectors, and the indexes of its readings.
struct AnalysedSource {
  AnalysedWell well;
  std::string reporter;
  std::optional<std::size_t> index;  ///< index of the well in the readings; nothing if it has none
  std::optional<std::size_t> channel;  ///< nothing if the detector has no channel
};

/// The wells and detectors of a plate to be analysed, sorted by well.
std::vector<AnalysedSource> SourcesOf(const RunReader& run, const Readings& readings,
                                      const std::vector<std::string>& channels);

/// The readings of a source, one for each frame of the stage; NaN for a missing one. Empty if the
/// source has none.
std::vector<double> ReadingsOf(const AnalysedSource& source, const StageReadings& stage,
                               std::size_t wellCount);

/// The temperature of each frame of the stage in the well of a source; NaN where it is not known.
/// Empty where the source has no readings.
std::vector<double> TemperaturesOf(const AnalysedSource& source, const StageReadings& stage,
                                   const Readings& readings);

/// A plate of a study that has nothing to analyse.
struct SkippedPlate {
  std::string name;
  std::string why;  ///< as `WhyNotAnalysed` says it
};

/// Calls `work(plate, name)` for each plate of a study, with its name; otherwise for `run` itself,
/// with an empty name.
template <typename Work>
void ForEachPlate(const RunReader& run, const Work& work) {
  if (!run.IsStudy()) return work(run, std::string());
  for (const std::string& name : run.PlateNames()) work(run.Plate(name), name);
}

/// Throws `Error` of class `kDocument` about a study of whose plates all are skipped.
void RequireSomePlate(const RunReader& run, Stage stage, const std::vector<SkippedPlate>& skipped);

/// Calls `work(plate, readings, stageReadings, name)` for each plate of a study, or for `run`
/// itself. A plate of a study that has no readings of the stage is worked on without any, and
/// returned. Throws `Error` of class `kDocument` when there are none at all.
template <typename Work>
std::vector<SkippedPlate> ForEachStage(const RunReader& run, Stage stage, const Work& work) {
  std::vector<SkippedPlate> skipped;
  ForEachPlate(run, [&](const RunReader& plate, const std::string& name) {
    const Readings readings = plate.Readings();
    const auto why = run.IsStudy() ? WhyNotAnalysed(readings, stage) : std::nullopt;
    if (why) skipped.push_back({name, *why});
    work(plate, readings,
         why ? StageReadings() : StageReadingsOf(run.Path().string(), readings, stage), name);
  });
  if (run.IsStudy()) RequireSomePlate(run, stage, skipped);
  return skipped;
}

/// If `detector` is given, removes the elements for other detectors. `wellOf` returns the
/// `AnalysedWell` of an element. Throws `Error` of class `kUsage` if no element is left.
template <typename Elements, typename WellOf>
void KeepDetector(Elements& elements, const std::optional<std::string>& detector,
                  const WellOf& wellOf) {
  if (!detector) return;
  std::erase_if(elements, [&](const auto& each) { return wellOf(each).detector != *detector; });
  if (!elements.empty()) return;
  throw Error(ErrorCode::kNoSuchValue, "no well has a detector '" + *detector + "'");
}

/// The curves of all plates, and the plates that have none to analyse.
struct PlateCurves {
  std::vector<AmplificationCurve> curves;
  std::vector<SkippedPlate> skipped;
};

/// As `AmplificationCurvesOf(run)`.
PlateCurves PlateCurvesOf(const RunReader& run);

}  // namespace vex2::lab
