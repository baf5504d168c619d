#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "lab/analysis/AmplificationCurve.h"
#include "vex2/framework/Export.h"

namespace vex2::lab {

/// The confidence of all intervals of an analysis.
inline constexpr double kConfidence = 0.95;

/// A well of a known quantity, and where its threshold cycle lies beside the line.
struct StandardPoint {
  AnalysedWell well;         ///< of task STND
  double quantity = 0;       ///< above 0
  std::optional<double> cq;  ///< nothing if the well has none; then it is no part of the fit
  double residual = 0;       ///< cycles by which `cq` lies above the line
};

/// The line Cq = intercept + slope x log10(quantity) through the standards of a detector, fitted by
/// least squares to the single wells.
///
/// References: Bustin et al. 2009, "The MIQE Guidelines", Clin. Chem. 55:611 (what to report);
/// Rutledge and Côté 2003, "Mathematics of quantitative kinetic PCR and the application of standard
/// curves", Nucleic Acids Res. 31:e93; for the intervals Draper and Smith, "Applied Regression
/// Analysis", chapter on inverse regression.
struct StandardCurve {
  std::string detector;  ///< the detector's name
  double slope = 0;      ///< cycles for ten times the quantity; -3.32 where each cycle doubles
  double intercept = 0;  ///< the threshold cycle of the quantity 1
  /// 10^(-1/slope) - 1: 1 where each cycle doubles. Nothing for a line that does not fall.
  std::optional<double> efficiency;
  std::optional<double> efficiencyLow;   ///< of the interval of confidence, from that of the slope
  std::optional<double> efficiencyHigh;  ///< of the same interval
  double rSquared = 0;                   ///< of the single wells
  /// Of the line through the mean threshold cycle of each quantity. The single wells also hold what
  /// differs between samples and replicates.
  double rSquaredOfMeans = 0;
  double residualDeviation = 0;  ///< of the wells about the line, cycles
  /// The smallest quantity from which on, upwards, at least 95 % of the standards have a threshold
  /// cycle. Nothing if not even the largest has. It is no smaller than the smallest standard.
  std::optional<double> limitOfDetection;
  std::vector<StandardPoint> points;  ///< all standards, in the order of the wells

  std::size_t wells = 0;       ///< in the fit
  double meanLogQuantity = 0;  ///< of the wells in the fit, base 10
  double sumOfSquares = 0;     ///< of the distances of log10(quantity) from their mean
  double studentLimit = 0;     ///< t of `kConfidence` at `wells` - 2 degrees of freedom
};

/// A quantity that was read off a standard curve.
struct QuantityEstimate {
  double quantity = 0;  ///< in the unit of the standards
  double low = 0;       ///< of the interval of confidence
  double high = 0;      ///< of the interval of confidence

  /// Whether all fields are equal.
  friend bool operator==(const QuantityEstimate&, const QuantityEstimate&) = default;
};

/// The curve through `points`, which are of one detector. Returns nothing if fewer than three wells
/// have a threshold cycle, or if these have fewer than two different quantities.
VEX2_API std::optional<StandardCurve> FitStandardCurve(const std::string& detector,
                                                       std::vector<StandardPoint> points);

/// The quantity at the mean threshold cycle `cq` of `replicates` wells. Its interval holds what is
/// uncertain of the line and of the wells. Returns nothing for a line that does not fall.
VEX2_API std::optional<QuantityEstimate> EstimateQuantity(const StandardCurve& curve, double cq,
                                                          std::size_t replicates = 1);

}  // namespace vex2::lab
