#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "lab/analysis/AmplificationCurve.h"
#include "lab/analysis/Cq.h"
#include "lab/analysis/Statistics.h"

namespace vex2::lab {

/// A curve without gaps, its baseline, and where it takes off. Indexes count from 0.
struct CurveShape {
  std::vector<double> cycles;     ///< at least `kFewestCycles`
  std::vector<double> readings;   ///< those missing and the outliers filled in
  std::vector<double> corrected;  ///< less the baseline
  std::size_t filled = 0;         ///< how many readings were missing in between
  std::size_t outliers = 0;       ///< how many readings were left out
  double readingNoise = 0;        ///< standard deviation of a reading, from the whole curve

  double takeOff = 0;              ///< the maximum of the second derivative, as an index
  bool isStillRising = false;      ///< that maximum is the last value: it may lie after the run
  bool isRisingFirst = false;      ///< that maximum is the first value: it may lie before it
  bool isFilledAtTakeOff = false;  ///< the maximum was found from readings that were filled in

  CycleRange baselineCycles;
  Line baseline;
  bool isBaselineSet = false;  ///< by somebody, else found
  double noise = 0;            ///< standard deviation about the baseline
  std::size_t top = 0;         ///< index of the largest corrected reading from the take-off on
  double amplitude = 0;        ///< that reading
  double lasting = 0;          ///< the highest level that two consecutive ones of them reach

  /// The cycle at an index between two of them.
  double CycleAt(double index) const;
  /// The corrected reading at such an index.
  double CorrectedAt(double index) const;
};

/// Returns nothing for a curve with too few cycles, or with most of its cycles missing. `baseline`
/// is the one that is set for the detector; it is not used if it holds fewer than three cycles of
/// the curve.
std::optional<CurveShape> ShapeOf(const AmplificationCurve& curve,
                                  const std::optional<CycleRange>& baseline);
/// Takes the baseline of a curve that does not rise: from the third cycle to the last. Noise,
/// amplitude and lasting level, by which that was judged, stay.
void UseWholeBaseline(CurveShape& shape);

/// Where the corrected curve passes `threshold` upwards for the last time before its top, in
/// cycles. Returns nothing if the curve does not cross it: its top is below the threshold, or no
/// reading up to the top is.
std::optional<double> CrossingOf(const CurveShape& shape, double threshold);

/// How many cycles have no frame: those that are left out where the cycles are farther apart than
/// most of them are.
std::size_t MissingCycles(const std::vector<double>& cycles);

/// The number of cycles that are in the range.
std::size_t CyclesWithin(const std::vector<double>& cycles, const CycleRange& range);

}  // namespace vex2::lab
