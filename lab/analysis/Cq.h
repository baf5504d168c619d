#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/analysis/AmplificationCurve.h"
#include "lab/analysis/Quality.h"
#include "lab/analysis/Replicates.h"
#include "lab/analysis/StandardCurve.h"
#include "lab/model/RunReader.h"
#include "vex2/framework/Export.h"

namespace vex2::lab {

/// The method that finds the quantification cycle of a curve.
enum class CqMethod {
  /// The cycle at which the baseline-corrected curve crosses the threshold upwards for the last
  /// time before its largest reading. It is interpolated between two cycles on the logarithm of the
  /// fluorescence. (The threshold cycle; Bustin et al. 2009, "The MIQE Guidelines", Clin. Chem.
  /// 55:611.)
  kThreshold,
  /// The maximum of the second derivative of the smoothed curve, interpolated between cycles by a
  /// parabola through its three largest values. Needs no threshold and no baseline. (Luu-The et al.
  /// 2005, "Improved real-time RT-PCR method for high-throughput measurements using second
  /// derivative calculation and double correction", BioTechniques 38:287.)
  kSecondDerivative,
};

/// Why a curve has no quantification cycle.
enum class NoCq {
  /// The well was not measured, no channel has the name of the reporter, or all readings are
  /// missing.
  kNoReadings,
  kTooFewCycles,  ///< fewer than `kFewestCycles`
  kNoRise,        ///< it does not rise, or rises by less than 5 % of the highest curve
  kNoisy,         ///< it rises by less than 10 times the noise of its baseline
  kEarly,         ///< it rises, or is above the threshold, from the first cycles on
  kLate,          ///< it rises, but does not reach the threshold within the run
};

/// The smallest number of cycles with readings that a curve must have.
inline constexpr std::size_t kFewestCycles = 10;

/// A range of cycles of a run, including both ends.
struct CycleRange {
  double first = 0;  ///< from 1
  double last = 0;   ///< not below `first`

  /// Whether both ends are equal.
  friend bool operator==(const CycleRange&, const CycleRange&) = default;
};

/// Values that an analysis uses instead of those in the document.
struct CqOptions {
  CqMethod method = CqMethod::kThreshold;    ///< for all detectors
  std::optional<double> threshold = {};      ///< for all detectors, in the unit of the readings
  std::optional<CycleRange> baseline = {};   ///< for all curves
  std::optional<std::string> detector = {};  ///< analyse only this detector
};

/// The results for one curve.
struct CqResult {
  AmplificationCurve curve;       ///< the curve as it was measured
  std::vector<double> corrected;  ///< readings minus baseline; NaN for a missing one
  std::optional<double> cq;       ///< the quantification cycle
  std::optional<NoCq> reason;     ///< why there is no quantification cycle
  std::string note;               ///< for the user: the reason, or a warning about `cq`
  /// Threshold of the detector; nothing if none of its curves rises.
  std::optional<double> threshold;
  std::optional<CycleRange> baseline;  ///< the cycles of the baseline
  /// The baseline that is set for the detector, if it is not used because it has fewer than three
  /// cycles with readings.
  std::optional<CycleRange> unusedBaseline;
  double baselineIntercept = 0;  ///< the baseline at cycle 0
  double baselineSlope = 0;      ///< rise of the baseline per cycle
  /// Standard deviation of the readings from the baseline. If the baseline has fewer than
  /// `kFewestForLine` cycles, it is at least the noise of a reading in the whole curve.
  double noise = 0;
  double amplitude = 0;      ///< the largest corrected reading from the take-off on
  std::size_t outliers = 0;  ///< number of outliers that were left out
  /// The maximum of the second derivative, in cycles, whatever `method` is. Nothing if the curve
  /// does not rise, or if the maximum is at the beginning or end of the run.
  std::optional<double> secondDerivativeCq;
  /// The quantity by the standard curve of the detector; nothing for standards and controls.
  std::optional<QuantityEstimate> estimate;
};

/// The results for one detector.
struct DetectorResult {
  std::string name;                 ///< the detector's name
  std::optional<double> threshold;  ///< in the unit of the readings
  /// If false, the threshold is from the document or the options.
  bool isThresholdAutomatic = false;
  std::optional<lab::StandardCurve> curve;  ///< nothing if there are too few standards
};

/// The results for a run.
struct CqAnalysis {
  CqMethod method = CqMethod::kThreshold;  ///< how the quantification cycles were found
  std::vector<CqResult> wells;             ///< in the order of `AmplificationCurvesOf`
  std::vector<DetectorResult> detectors;   ///< in the order of their first wells
  std::vector<ReplicateGroup> replicates;  ///< in the order of their first wells
  /// Empty unless the document names a calibrator and a control.
  std::vector<RelativeQuantity> relative;
  std::vector<QualityFinding> findings;  ///< what the user should look at

  /// The detector with this name; null if there is none. Valid as long as the analysis.
  VEX2_API const DetectorResult* Find(std::string_view detector) const;
};

/// Finds the quantification cycle of every curve of `run`, and evaluates standards, replicates,
/// relative quantities and quality. The plates of a study are analysed together: a detector has one
/// threshold for all of them, the first one that the study or a plate sets. A baseline that a plate
/// sets is used for its wells, one that the study sets for the wells of the other plates. A plate
/// without readings has curves without readings and a finding.
///
/// Baseline: If a baseline is set for the detector and it is not automatic, a straight line is
/// fitted to its cycles by least squares. Otherwise the cycles are found for each curve: from the
/// third cycle to eight cycles before the maximum of the second derivative, or from the third to
/// the last cycle if the curve does not rise. A baseline with fewer than `kFewestForLine` cycles is
/// level, at the mean of its readings.
///
/// Smoothing: A parabola is fitted to five neighbouring cycles (Savitzky and Golay 1964, "Smoothing
/// and Differentiation of Data by Simplified Least Squares Procedures", Anal. Chem. 36:1627).
/// Missing readings, and those of cycles without a frame, are filled in on a straight line between
/// their neighbours. A curve is not analysed if more than half of its cycles have no frame.
///
/// Outliers: They are left out and filled in like missing readings. A reading is compared with its
/// four neighbours, two before and two after it. It is an outlier if it is above at least three of
/// them, or below at least three of them, by more than these three differ, by more than 10 times
/// the noise of a reading, and by more than 5 % of the range of the curve. The second reading and
/// the last but one, which have three neighbours on one side, can only be outliers below their
/// neighbours. The noise of a reading is 1.4826 / root 6 times the median size of the second
/// differences.
///
/// Threshold: If a threshold is set for the detector and it is not automatic, it is used. Otherwise
/// the threshold is a median over the curves of the detector that rise: that of their corrected
/// fluorescence at the maximum of the second derivative. No-template controls count only if no
/// other curve rises.
///
/// Rise: A curve rises if two consecutive corrected readings, from its take-off on, reach 10 times
/// the noise of its baseline, 7 times their own standard errors, and 5 % of the height of the
/// highest curve of the channel. The height of a curve is the median of its last three cycles. The
/// standard error at a cycle is that of a single value that the baseline predicts: for a line
/// fitted to n cycles with the mean m it is the noise times the root of 1 + 1/n + (cycle - m)^2 /
/// (sum of (cycles - m)^2), and for a level baseline the noise times the root of 1 + 1/n. The noise
/// is that of the baseline or of a reading, whichever is larger. A curve is early if half of its
/// rise from the third cycle on is over by the tenth, and therefore a rise or the maximum of the
/// second derivative cannot be found.
///
/// Throws the errors of `AmplificationCurvesOf`. Also throws `Error` of class `kUsage` for a
/// detector that the run does not have, a threshold that is not above 0, and a baseline with fewer
/// than three cycles.
VEX2_API CqAnalysis AnalyseCq(const RunReader& run, const CqOptions& options = {});
/// Finds the quantification cycles of one plate from `readings`, the readings of `run`, which the
/// caller has read already. Rules and errors are those of `AnalyseCq(run, options)`.
VEX2_API CqAnalysis AnalyseCq(const RunReader& run, const Readings& readings,
                              const CqOptions& options = {});
/// Finds the quantification cycles of any `curves`, by the rules of `AnalyseCq(run, options)`.
/// `detectors` have the baselines and thresholds that are set.
VEX2_API CqAnalysis AnalyseCurves(std::vector<AmplificationCurve> curves,
                                  const std::vector<Detector>& detectors,
                                  const CqOptions& options = {});

/// A baseline with at least this many cycles is a sloping line; a shorter one is level.
inline constexpr std::size_t kFewestForLine = 8;

/// The name of a method: "threshold" or "sdm".
VEX2_API std::string_view NameOf(CqMethod method);
/// The name of a reason: "no readings", "too few cycles", "no rise", "noisy", "early" or "late".
VEX2_API std::string_view NameOf(NoCq reason);

}  // namespace vex2::lab
