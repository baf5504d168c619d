#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "lab/analysis/Cq.h"
#include "lab/analysis/CurveShape.h"
#include "lab/model/Run.h"

namespace vex2::lab {

/// A curve in the course of its analysis.
struct CurveCase {
  AmplificationCurve curve;
  std::optional<CurveShape> shape;  ///< nothing with too few cycles
  std::optional<NoCq> reason;       ///< why the curve does not rise
  double leastRise = 0;             ///< the amplitude that it would have needed, where it is known

  bool Rises() const { return shape && !reason; }
};

/// What is set for a detector. A document does not distinguish the values of a new detector from
/// the same values that a user chose, so those count as not set.
std::optional<CycleRange> SetBaselineOf(const Detector& detector);
/// As for the baseline; a threshold that is not above 0 is not used.
std::optional<double> SetThresholdOf(const Detector& detector);

/// Sets `reason` of each curve that does not rise; all of them together, because a rise is judged
/// by the highest curve of its channel.
void JudgeRises(std::vector<CurveCase>& cases);

/// The automatic threshold of each detector that has a curve which rises.
std::map<std::string, double> AutomaticThresholds(const std::vector<CurveCase>& cases);

/// What is found of the curve. `threshold` is its detector's.
CqResult ResultOf(CurveCase&& found, CqMethod method, const std::optional<double>& threshold);

}  // namespace vex2::lab
