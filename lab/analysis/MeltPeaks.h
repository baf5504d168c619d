#pragma once

#include <span>
#include <vector>

#include "lab/analysis/Melt.h"

namespace vex2::lab {

/// The derivative -dF/dT of readings at ascending temperatures, and its uncertainty.
struct MeltDerivative {
  std::vector<double> values;  ///< one for each temperature
  std::vector<double> errors;  ///< standard error of each value if that of a reading is 1
  double noise = 0;  ///< standard deviation of a reading, from the deviations from the parabolas
};

/// The derivative of the readings. There must be at least five temperatures, all different.
MeltDerivative DerivativeOf(std::span<const double> temperatures, std::span<const double> readings);

/// All local maxima, whatever their prominence, ascending by temperature. `errors` are those of the
/// values, and make `MeltPeak::prominenceError`.
std::vector<MeltPeak> AllPeaks(std::span<const double> temperatures,
                               std::span<const double> derivative, std::span<const double> errors);

}  // namespace vex2::lab
