#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "lab/analysis/Cq.h"
#include "lab/analysis/CurveShape.h"

namespace vex2::lab {

/// A curve during its analysis.
struct CurveCase {
  AmplificationCurve curve;
  std::optional<CurveShape> shape;  ///< nothing if there are too few cycles
  /// A baseline that is set but has too few cycles of the curve.
  std::optional<CycleRange> unusedBaseline;
  std::optional<NoCq> reason;  ///< why the curve does not rise
  double leastRise = 0;        ///< the amplitude that would count as a rise, if it is known

  bool Rises() const { return shape && !reason; }
};

/// Sets `reason` for each curve that does not rise. It needs all curves at once, because a rise is
/// judged by the highest curve of its channel.
void JudgeRises(std::vector<CurveCase>& cases);

/// The automatic threshold of each detector that has a rising curve.
std::map<std::string, double> AutomaticThresholds(const std::vector<CurveCase>& cases);

/// The result for a curve. `threshold` is that of its detector.
CqResult ResultOf(CurveCase&& found, CqMethod method, const std::optional<double>& threshold);

}  // namespace vex2::lab
