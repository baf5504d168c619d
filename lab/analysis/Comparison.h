#pragma once

#include <string>
#include <vector>

#include "lab/analysis/Cq.h"

/// Comparisons between wells: replicates, and samples with each other.
namespace vex2::lab {

/// The replicate groups of all wells with a sample, in the order of their first wells. `detectors`
/// have the standard curves.
std::vector<ReplicateGroup> ReplicatesOf(const std::vector<CqResult>& wells,
                                         const std::vector<DetectorResult>& detectors);

/// The names of the calibrator and the endogenous control of relative quantities.
struct Reference {
  std::string calibrator;         ///< name of a sample
  std::string endogenousControl;  ///< name of a detector
};

/// The relative quantities of all targets except the control. Empty if there is no control. Without
/// a calibrator, each has only its ΔCq.
std::vector<RelativeQuantity> RelativeQuantitiesOf(const std::vector<CqResult>& wells,
                                                   const std::vector<DetectorResult>& detectors,
                                                   const Reference& reference);

}  // namespace vex2::lab
