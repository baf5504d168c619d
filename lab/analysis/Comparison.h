#pragma once

#include <string>
#include <vector>

#include "lab/analysis/Cq.h"

/// What is compared between wells: replicates, and samples with each other.
namespace vex2::lab {

/// The replicate groups of all wells that have a sample, in the order of their first wells.
/// `detectors` have the standard curves.
std::vector<ReplicateGroup> ReplicatesOf(const std::vector<CqResult>& wells,
                                         const std::vector<DetectorResult>& detectors);

/// The samples that relative quantities refer to, as the document names them.
struct Reference {
  std::string calibrator;         ///< a sample
  std::string endogenousControl;  ///< a detector
};

/// The relative quantities of all targets but the control. Nothing without a control; without
/// the calibrator there are ΔCq alone.
std::vector<RelativeQuantity> RelativeQuantitiesOf(const std::vector<CqResult>& wells,
                                                   const std::vector<DetectorResult>& detectors,
                                                   const Reference& reference);

}  // namespace vex2::lab
