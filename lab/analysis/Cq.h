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

/// How the quantification cycle of a curve is found.
enum class CqMethod {
  /// Where the baseline-corrected curve passes the threshold upwards for the last time before its
  /// largest reading, interpolated between two cycles on the logarithm of the fluorescence. (The
  /// threshold cycle; Bustin et al. 2009, "The MIQE Guidelines", Clin. Chem. 55:611.)
  kThreshold,
  /// Where the second derivative of the smoothed curve is largest, between cycles by a parabola
  /// through its three largest values. Needs no threshold and no baseline. (Luu-The et al. 2005,
  /// "Improved real-time RT-PCR method for high-throughput measurements using second derivative
  /// calculation and double correction", BioTechniques 38:287.)
  kSecondDerivative,
};

/// Why a curve has no quantification cycle.
enum class NoCq {
  kNoReadings,    ///< the well was not measured, or no channel bears the name of the reporter
  kTooFewCycles,  ///< fewer than `kFewestCycles`
  kNoRise,        ///< it does not rise, or by less than 5 % of the highest curve
  kNoisy,         ///< it rises by less than 10 times the noise of its baseline
  kEarly,         ///< it rises, or is above the threshold, from the first cycles on
  kLate,          ///< it rises, but not as far as the threshold within the run
};

/// The fewest cycles with readings that a curve needs.
inline constexpr std::size_t kFewestCycles = 10;

/// Cycles of a run, both ends included.
struct CycleRange {
  double first = 0;  ///< from 1
  double last = 0;   ///< not below `first`

  /// Whether both ends are equal.
  friend bool operator==(const CycleRange&, const CycleRange&) = default;
};

/// What an analysis is to use in place of what the document says.
struct CqOptions {
  CqMethod method = CqMethod::kThreshold;    ///< for all detectors
  std::optional<double> threshold = {};      ///< for all detectors, in the unit of the readings
  std::optional<CycleRange> baseline = {};   ///< for all curves
  std::optional<std::string> detector = {};  ///< analyse this one alone
};

/// What was found of one curve.
struct CqResult {
  AmplificationCurve curve;            ///< as it was measured
  std::vector<double> corrected;       ///< the readings less the baseline, NaN where one is missing
  std::optional<double> cq;            ///< the quantification cycle
  std::optional<NoCq> reason;          ///< why there is none
  std::string note;                    ///< for people: the reason, or what to know of `cq`
  std::optional<double> threshold;     ///< of the detector; nothing if no curve of it rises
  std::optional<CycleRange> baseline;  ///< the cycles of the baseline
  double baselineIntercept = 0;        ///< the baseline at cycle 0
  double baselineSlope = 0;            ///< per cycle
  /// Standard deviation of the readings about the baseline; about one of fewer than
  /// `kFewestForLine` cycles at least that of the readings of the whole curve.
  double noise = 0;
  double amplitude = 0;      ///< the largest corrected reading once the curve rises
  std::size_t outliers = 0;  ///< how many readings were left out
  /// The maximum of the second derivative, in cycles, even if `method` is another; nothing if
  /// there is no rise or the maximum is at the begin or end of the run.
  std::optional<double> secondDerivativeCq;
  /// From the standard curve of the detector, of a well that is no standard and no control.
  std::optional<QuantityEstimate> estimate;
};

/// What was found of one detector.
struct DetectorResult {
  std::string name;                         ///< the detector's name
  std::optional<double> threshold;          ///< in the unit of the readings
  bool isThresholdAutomatic = false;        ///< else from the document or from the options
  std::optional<lab::StandardCurve> curve;  ///< where it has enough standards
};

/// What was found of a run.
struct CqAnalysis {
  CqMethod method = CqMethod::kThreshold;  ///< how the quantification cycles were found
  std::vector<CqResult> wells;             ///< in the order of `AmplificationCurvesOf`
  std::vector<DetectorResult> detectors;   ///< in the order of their first wells
  std::vector<ReplicateGroup> replicates;  ///< in the order of their first wells
  std::vector<RelativeQuantity> relative;  ///< where the document names calibrator and control
  std::vector<QualityFinding> findings;    ///< what a person should look at

  /// The detector of this name; null when there is none. Valid as long as the analysis.
  VEX2_API const DetectorResult* Find(std::string_view detector) const;
};

/// Finds the quantification cycle of every curve of `run`, and what follows from them. In a study
/// the plates are analysed together: a detector has one threshold on all of them.
///
/// Baseline: a straight line fitted by least squares to the cycles that are set for the detector,
/// if its baseline is not automatic. Otherwise found for each curve: from the third cycle to eight
/// before the maximum of the second derivative, and from the third to the last where the curve does
/// not rise. With fewer than `kFewestForLine` cycles it is level, at their mean.
///
/// Smoothing: a parabola fitted to five neighbouring cycles (Savitzky and Golay 1964, "Smoothing
/// and Differentiation of Data by Simplified Least Squares Procedures", Anal. Chem. 36:1627).
/// Missing readings are filled on a straight line between their neighbours; so are cycles without a
/// frame. A curve of which more cycles have none than have one is not analysed.
///
/// Outliers are left out and filled like missing readings. A reading is one that lies outside of at
/// least three of its four neighbours (two before and two after it), all above or all below,
/// farther than these three differ, than 10 times the noise of a reading and than 5 % of the range
/// of the curve. The last but one and the second reading, with three neighbours at one side, can
/// only be below. The noise of a reading is 1.4826 / root 6 times the median of the second
/// differences' sizes.
///
/// Threshold: that of the detector, if one is set and it is not automatic. Otherwise the median,
/// over the curves of the detector that rise, of the corrected fluorescence at the maximum of the
/// second derivative; no-template controls count only where nothing else rises.
///
/// A curve rises when two consecutive corrected readings from its take-off on reach 10 times the
/// noise of its baseline and 5 % of the highest curve of the channel: of its level at the end of
/// the run, the median of three cycles. It is early where this, or the maximum of the second
/// derivative, cannot be found because half of the rise from the third cycle on is over by the
/// tenth.
///
/// Throws as `AmplificationCurvesOf` does, and `Error` of class `kUsage` for a detector that the
/// run does not have, a threshold that is not above 0, and a baseline of fewer than three cycles.
VEX2_API CqAnalysis AnalyseCq(const RunReader& run, const CqOptions& options = {});
/// Finds the quantification cycles of one plate from `readings`, the readings of `run`, which the
/// caller has read already. Rules and errors are those of `AnalyseCq(run, options)`.
VEX2_API CqAnalysis AnalyseCq(const RunReader& run, const Readings& readings,
                              const CqOptions& options = {});
/// Finds the quantification cycles of any `curves`, by the rules of `AnalyseCq(run, options)`.
/// `detectors` hold the baselines and thresholds that are set.
VEX2_API CqAnalysis AnalyseCurves(std::vector<AmplificationCurve> curves,
                                  const std::vector<Detector>& detectors,
                                  const CqOptions& options = {});

/// The fewest cycles of a baseline to which a sloping line is fitted.
inline constexpr std::size_t kFewestForLine = 8;

/// "threshold" or "sdm".
VEX2_API std::string_view NameOf(CqMethod method);
/// "no readings", "too few cycles", "no rise", "noisy", "early" or "late".
VEX2_API std::string_view NameOf(NoCq reason);

}  // namespace vex2::lab
