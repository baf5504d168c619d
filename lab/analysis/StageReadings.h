#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lab/analysis/AmplificationCurve.h"

namespace vex2::lab {

/// The readings of one stage of a plate, sorted out by wells and channels.
struct StageReadings {
  std::vector<std::size_t> frames;    ///< of the stage, indexes from 0, in the order of the run
  std::vector<double> axis;           ///< of each: the cycle, or the temperature of melting
  std::vector<std::string> channels;  ///< names; one empty name for the one without
  std::vector<std::vector<double>> fluorescence;  ///< of each channel: by frames, then wells
};

/// The readings of `stage`. Throws `Error` of class `kDocument`, about the file at `path`, when
/// there is none whose meaning is known.
StageReadings StageReadingsOf(const std::string& path, const Readings& readings, Stage stage);

/// A well, one of its detectors, and where its readings are.
struct AnalysedSource {
  AnalysedWell well;
  std::string reporter;
  std::optional<std::size_t> index;    ///< of the well in the readings; nothing if it has none
  std::optional<std::size_t> channel;  ///< nothing if none is the detector's
};

/// What is to be analysed in the wells of a plate, by wells.
std::vector<AnalysedSource> SourcesOf(const RunReader& run, const Readings& readings,
                                      const std::vector<std::string>& channels);

/// The readings of a source, one for each frame of the stage; NaN where one is missing. Empty
/// where it has none.
std::vector<double> ReadingsOf(const AnalysedSource& source, const StageReadings& stage,
                               std::size_t wellCount);

/// Calls `work(plate, name)` for each plate of a study, with its name, or for `run` itself.
template <typename Work>
void ForEachPlate(const RunReader& run, const Work& work) {
  if (!run.IsStudy()) return work(run, std::string());
  for (const std::string& name : run.PlateNames()) work(run.Plate(name), name);
}

/// Removes what is not of the detector, where one is given; `wellOf` gives the `AnalysedWell` of an
/// element. Throws `Error` of class `kUsage` when nothing is left.
template <typename Elements, typename WellOf>
void KeepDetector(Elements& elements, const std::optional<std::string>& detector,
                  const WellOf& wellOf) {
  if (!detector) return;
  std::erase_if(elements, [&](const auto& each) { return wellOf(each).detector != *detector; });
  if (!elements.empty()) return;
  throw Error(ErrorCode::kNoSuchValue, "no well has a detector '" + *detector + "'");
}

}  // namespace vex2::lab
