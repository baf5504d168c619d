#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "lab/analysis/AmplificationCurve.h"
#include "lab/analysis/Cq.h"
#include "lab/analysis/Statistics.h"

namespace vex2::lab {

/// A curve without gaps, its baseline, and its take-off. Indexes count from 0.
struct CurveShape {
  std::vector<double> cycles;     ///< at least `kFewestCycles`
  std::vector<double> readings;   ///< missing readings and outliers are filled in
  std::vector<double> corrected;  ///< readings minus baseline
  std::size_t filled = 0;         ///< number of missing readings that were filled in
  std::size_t outliers = 0;       ///< number of outliers that were left out
  double readingNoise = 0;        ///< standard deviation of a reading, from the whole curve

  double takeOff = 0;          ///< maximum of the second derivative, as an index with a fraction
  bool isStillRising = false;  ///< the maximum is the last value: the true one may be after the run
  bool isRisingFirst = false;  ///< the maximum is the first value: the true one may be before it
  bool isFilledAtTakeOff = false;  ///< readings near the maximum were filled in

  CycleRange baselineCycles;
  Line baseline;
  bool isBaselineSet = false;  ///< the baseline was set for the detector; otherwise it was found
  double noise = 0;            ///< standard deviation of the readings from the baseline
  std::size_t top = 0;         ///< index of the largest corrected reading from the take-off on
  double amplitude = 0;        ///< the largest corrected reading from the take-off on
  /// The highest level that two consecutive readings reach from the take-off on.
  double lasting = 0;
  /// The same as a multiple of the standard error of a corrected reading at its cycle.
  double lastingInErrors = 0;

  /// The cycle at `index`, which may be between two whole indexes.
  double CycleAt(double index) const;
  /// The corrected reading at `index`, which may be between two whole indexes.
  double CorrectedAt(double index) const;
};

/// Analyses a curve. Returns nothing if it has too few cycles, or if most of its cycles are
/// missing. `baseline` is the range that is set for the detector; it is used only if the curve has
/// at least three cycles in it.
std::optional<CurveShape> ShapeOf(const AmplificationCurve& curve,
                                  const std::optional<CycleRange>& baseline);
/// Sets the baseline of a curve that does not rise: from the third cycle to the last. Leaves
/// noise, amplitude and lasting level as they are, since they show that the curve does not rise.
void UseWholeBaseline(CurveShape& shape);

/// The cycle at which the corrected curve crosses `threshold` upwards for the last time before its
/// top. Returns nothing if there is no crossing: the top is below the threshold, or all readings up
/// to the top are above it.
std::optional<double> CrossingOf(const CurveShape& shape, double threshold);

/// The noise of a reading, estimated from the second differences of the readings. A slope, a bend
/// or a few outliers hardly change these. The variance of a second difference is six times that of
/// a reading, and 1.4826 times the median size is the standard deviation.
double ReadingNoise(std::span<const double> readings);

/// The number of cycles without a frame. Such cycles are between two cycles that are farther apart
/// than most.
std::size_t MissingCycles(const std::vector<double>& cycles);

/// The number of cycles in the range.
std::size_t CyclesWithin(const std::vector<double>& cycles, const CycleRange& range);

}  // namespace vex2::lab
