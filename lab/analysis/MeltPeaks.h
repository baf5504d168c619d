#pragma once

#include <span>
#include <vector>

#include "lab/analysis/Melt.h"

namespace vex2::lab {

/// The derivative -dF/dT of readings at ascending temperatures, and its uncertainty.
struct MeltDerivative {
  std::vector<double> values;  ///< one for each temperature
  double noise = 0;            ///< standard error of a value, from the deviation of the readings
};

/// The derivative of the readings. There must be at least five temperatures, all different.
MeltDerivative DerivativeOf(std::span<const double> temperatures, std::span<const double> readings);

/// All local maxima, whatever their prominence, ascending by temperature.
std::vector<MeltPeak> AllPeaks(std::span<const double> temperatures,
                               std::span<const double> derivative);

}  // namespace vex2::lab
