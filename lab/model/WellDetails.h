#pragma once

#include <string>
#include <vector>

#include "vex2/manager/Vex2FileManager.h"

namespace vex2::lab {

/// What a plate setup holds of a well besides its sample and detectors. Texts are UTF-8.
struct WellDetails {
  std::string name;         ///< as "A1"
  std::string description;  ///< empty if there is none
  bool flag = false;
  bool isSetUp = false;             ///< the well has a sample or a detector
  std::vector<bool> detectorFlags;  ///< flags of its detectors, in their order
};

/// The details of all wells of the setup, in its order.
std::vector<WellDetails> WellDetailsOf(const Vex2FileManager& document);

}  // namespace vex2::lab
