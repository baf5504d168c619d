#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "lab/analysis/AmplificationCurve.h"
#include "lab/analysis/StandardCurve.h"

namespace vex2::lab {

/// Wells with the same sample, detector, task and quantity. In a study, these may be wells of
/// different plates.
struct ReplicateGroup {
  std::string sample;              ///< sample of all its wells; not empty
  std::string detector;            ///< detector of all its wells
  std::string task;                ///< task of all its wells
  std::optional<double> quantity;  ///< quantity in the document
  std::vector<std::size_t> wells;  ///< indexes in `CqAnalysis::wells`, from 0
  std::size_t withCq = 0;          ///< number of the wells with a quantification cycle
  std::optional<double> meanCq;    ///< mean of these cycles
  /// Standard deviation of these cycles; nothing for fewer than two.
  std::optional<double> deviation;
  /// The quantity for the mean cycle by the standard curve; nothing for standards and controls.
  std::optional<QuantityEstimate> estimate;
};

/// The amount of a target in a sample relative to the calibrator. Both amounts are divided by that
/// of the endogenous control in the same sample.
///
/// References: Livak and Schmittgen 2001, "Analysis of relative gene expression data using
/// real-time quantitative PCR and the 2^(-ΔΔCT) method", Methods 25:402; Pfaffl 2001, "A new
/// mathematical model for relative quantification in real-time RT-PCR", Nucleic Acids Res. 29:e45.
struct RelativeQuantity {
  std::string sample;    ///< the sample that is compared with the calibrator
  std::string detector;  ///< detector of the target
  double meanCq = 0;     ///< mean quantification cycle of the target in the sample
  double controlCq = 0;  ///< mean quantification cycle of the endogenous control in the sample
  double deltaCq = 0;    ///< `meanCq` minus `controlCq`
  /// Standard deviation of `deltaCq`. It is calculated from the deviations of the target's cycles
  /// and of the control's cycles.
  std::optional<double> deviation;
  std::optional<double> deltaDeltaCq;  ///< `deltaCq` minus the one of the calibrator
  std::optional<double> ratio;         ///< 2^(-ΔΔCq)
  std::optional<double> ratioLow;      ///< 2^(-(ΔΔCq + deviation))
  std::optional<double> ratioHigh;     ///< 2^(-(ΔΔCq - deviation))
  /// The ratio, calculated with the efficiencies of both detectors in place of 2; nothing unless
  /// both have a standard curve.
  std::optional<double> correctedRatio;
};

}  // namespace vex2::lab
