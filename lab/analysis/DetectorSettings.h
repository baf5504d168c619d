#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "lab/analysis/Cq.h"
#include "lab/model/Run.h"

namespace vex2::lab {

/// The baselines and thresholds that documents set for their detectors. In a study the study and
/// each of its plates have detectors of their own.
class DetectorSettings {
 public:
  /// Adds the detectors of a plate, which has no name outside a study. The study comes first, then
  /// its plates in their order.
  void Add(const std::string& plate, const std::vector<Detector>& detectors);

  /// The baseline for a well: the one that its plate sets for the detector, else the one that the
  /// study sets. Nothing if neither sets one, or if the plate wants it to be found.
  std::optional<CycleRange> BaselineOf(const AnalysedWell& well) const;
  /// The threshold for all plates: the first that is set.
  std::optional<double> ThresholdOf(const std::string& detector) const;

  /// Says which of the thresholds that are set for the detector are not used, and why.
  std::vector<QualityFinding> FindUnusedThresholds(const std::string& detector) const;

 private:
  struct Entry {
    std::string plate;
    Detector detector;
  };

  const std::vector<Entry>& entriesOf(const std::string& detector) const;

  std::map<std::string, std::vector<Entry>> entries_;  // by names
};

}  // namespace vex2::lab
