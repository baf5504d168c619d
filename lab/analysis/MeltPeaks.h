#pragma once

#include <span>
#include <vector>

#include "lab/analysis/Melt.h"

namespace vex2::lab {

/// -dF/dT of readings at ascending temperatures, and how far it is from certain.
struct MeltDerivative {
  std::vector<double> values;  ///< one for each temperature
  double noise = 0;            ///< standard error of a value, from the scatter of the readings
};

/// At least five different temperatures.
MeltDerivative DerivativeOf(std::span<const double> temperatures, std::span<const double> readings);

/// All local maxima, whatever their prominence, ascending by temperature.
std::vector<MeltPeak> AllPeaks(std::span<const double> temperatures,
                               std::span<const double> derivative);

}  // namespace vex2::lab
