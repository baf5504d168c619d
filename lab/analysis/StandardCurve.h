#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "lab/analysis/AmplificationCurve.h"
#include "vex2/framework/Export.h"

namespace vex2::lab {

/// The confidence level of all intervals in an analysis.
inline constexpr double kConfidence = 0.95;

/// A well with a known quantity, and the distance of its quantification cycle from the standard
/// curve.
struct StandardPoint {
  AnalysedWell well;         ///< a well with the task STND
  double quantity = 0;       ///< above 0
  std::optional<double> cq;  ///< nothing if the well has none; it is then not part of the fit
  double residual = 0;       ///< `cq` minus the cycle on the line
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
  double slope = 0;  ///< cycles for ten times the quantity; -3.32 if each cycle doubles the copies
  double intercept = 0;  ///< the quantification cycle of the quantity 1
  /// 10^(-1/slope) - 1, which is 1 if each cycle doubles the copies. Nothing if the line does not
  /// fall.
  std::optional<double> efficiency;
  /// Lower end of the confidence interval of the efficiency, calculated from that of the slope.
  std::optional<double> efficiencyLow;
  std::optional<double> efficiencyHigh;  ///< upper end of the same interval
  double rSquared = 0;                   ///< R² of the single wells
  /// R² of the line through the mean quantification cycles of the quantities. Differences between
  /// replicates do not affect it.
  double rSquaredOfMeans = 0;
  double residualDeviation = 0;  ///< standard deviation of the wells from the line, in cycles
  /// The limit of detection: at this quantity and all larger ones, at least 95 % of the standards
  /// have a quantification cycle. Nothing if that is not so even for the largest quantity.
  std::optional<double> limitOfDetection;
  std::vector<StandardPoint> points;  ///< all standards, in the order of the wells

  std::size_t wells = 0;       ///< number of wells in the fit
  double meanLogQuantity = 0;  ///< mean log10(quantity) of the wells in the fit
  double sumOfSquares = 0;     ///< sum of the squared distances of log10(quantity) from its mean
  double studentLimit = 0;     ///< t of `kConfidence` at `wells` - 2 degrees of freedom
};

/// A quantity that was calculated from a standard curve.
struct QuantityEstimate {
  double quantity = 0;  ///< in the unit of the standards
  double low = 0;       ///< lower end of the confidence interval
  double high = 0;      ///< upper end of the confidence interval

  /// Whether all fields are equal.
  friend bool operator==(const QuantityEstimate&, const QuantityEstimate&) = default;
};

/// Fits the curve to `points`, which must be of one detector. Returns nothing if fewer than three
/// wells have a quantification cycle, or if these have fewer than two different quantities.
VEX2_API std::optional<StandardCurve> FitStandardCurve(const std::string& detector,
                                                       std::vector<StandardPoint> points);

/// The quantity for the mean quantification cycle `cq` of `replicates` wells. Its interval includes
/// the uncertainty of the line and of the wells. Returns nothing if the line does not fall.
VEX2_API std::optional<QuantityEstimate> EstimateQuantity(const StandardCurve& curve, double cq,
                                                          std::size_t replicates = 1);

}  // namespace vex2::lab
