#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "lab/analysis/Cq.h"
#include "lab/analysis/CurveShape.h"
#include "lab/model/Run.h"

namespace vex2::lab {

/// A curve during its analysis.
struct CurveCase {
  AmplificationCurve curve;
  std::optional<CurveShape> shape;  ///< nothing if there are too few cycles
  std::optional<NoCq> reason;       ///< why the curve does not rise
  double leastRise = 0;             ///< the amplitude that would count as a rise, if it is known

  bool Rises() const { return shape && !reason; }
};

/// The baseline that is set for a detector; nothing if none is set. If the values are those of a
/// new detector, they count as not set: a document does not show whether a user set the same
/// values.
std::optional<CycleRange> SetBaselineOf(const Detector& detector);
/// The threshold that is set for a detector; nothing if none is set, or if it is not above 0. The
/// value of a new detector counts as not set.
std::optional<double> SetThresholdOf(const Detector& detector);

/// Sets `reason` for each curve that does not rise. It needs all curves at once, because a rise is
/// judged by the highest curve of its channel.
void JudgeRises(std::vector<CurveCase>& cases);

/// The automatic threshold of each detector that has a rising curve.
std::map<std::string, double> AutomaticThresholds(const std::vector<CurveCase>& cases);

/// The result for a curve. `threshold` is that of its detector.
CqResult ResultOf(CurveCase&& found, CqMethod method, const std::optional<double>& threshold);

}  // namespace vex2::lab
