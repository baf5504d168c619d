#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "lab/analysis/AmplificationCurve.h"
#include "lab/analysis/StandardCurve.h"

namespace vex2::lab {

/// Wells with the same sample, detector, task and quantity; in a study also those of other plates.
struct ReplicateGroup {
  std::string sample;               ///< of all its wells; not empty
  std::string detector;             ///< of all its wells
  std::string task;                 ///< of all its wells
  std::optional<double> quantity;   ///< as the document gives it
  std::vector<std::size_t> wells;   ///< indexes in `CqAnalysis::wells`, from 0
  std::size_t withCq = 0;           ///< how many of them have a quantification cycle
  std::optional<double> meanCq;     ///< of those
  std::optional<double> deviation;  ///< standard deviation of those, of at least two
  /// From the standard curve and the mean, of wells that are no standards and no controls.
  std::optional<QuantityEstimate> estimate;
};

/// How much of a target a sample holds, compared with the calibrator: both in proportion to the
/// endogenous control in the same sample.
///
/// References: Livak and Schmittgen 2001, "Analysis of relative gene expression data using
/// real-time quantitative PCR and the 2^(-ΔΔCT) method", Methods 25:402; Pfaffl 2001, "A new
/// mathematical model for relative quantification in real-time RT-PCR", Nucleic Acids Res. 29:e45.
struct RelativeQuantity {
  std::string sample;                  ///< compared with the calibrator
  std::string detector;                ///< of the target
  double meanCq = 0;                   ///< of the target in the sample
  double controlCq = 0;                ///< mean of the endogenous control in the sample
  double deltaCq = 0;                  ///< `meanCq` less `controlCq`
  std::optional<double> deviation;     ///< of `deltaCq`, from those of both means' wells
  std::optional<double> deltaDeltaCq;  ///< `deltaCq` less that of the calibrator
  std::optional<double> ratio;         ///< 2^(-ΔΔCq)
  std::optional<double> ratioLow;      ///< 2^(-(ΔΔCq + deviation))
  std::optional<double> ratioHigh;     ///< 2^(-(ΔΔCq - deviation))
  /// With the efficiencies of both detectors in place of 2, where both have a standard curve.
  std::optional<double> correctedRatio;
};

}  // namespace vex2::lab
