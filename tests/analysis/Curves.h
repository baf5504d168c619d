#pragma once

#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "lab/analysis/Cq.h"

namespace vex2::test {

/// The parameters of a simulated curve. Copies grow by `efficiency` in each cycle, and more slowly
/// near the plateau.
struct Growth {
  double copies = 1000;
  double efficiency = 0.95;
  double plateauCopies = 1e11;
  double brightness = 8;  ///< fluorescence of the plateau
  double baseline = 0.5;
  double drift = 0.002;  ///< per cycle
  double noise = 0.008;  ///< standard deviation; 0.3 % of the light is added
};

/// The fluorescence of the product alone, without baseline and noise. Cycles count from 0.
inline std::vector<double> LightOf(const Growth& growth, std::size_t cycles) {
  std::vector<double> light = {0};
  double copies = growth.copies;
  for (std::size_t cycle = 0; cycle < cycles; ++cycle) {
    copies += copies * growth.efficiency * (1 - copies / growth.plateauCopies);
    light.push_back(growth.brightness * copies / growth.plateauCopies);
  }
  return light;
}

/// The cycle at which the light without noise reaches `threshold`, interpolated on the logarithm.
inline double TrueCq(const Growth& growth, double threshold, std::size_t cycles = 60) {
  const std::vector<double> light = LightOf(growth, cycles);
  for (std::size_t cycle = 2; cycle < light.size(); ++cycle) {
    if (light[cycle] < threshold) continue;
    const double step = std::log(light[cycle] / light[cycle - 1]);
    return static_cast<double>(cycle) - 1 + std::log(threshold / light[cycle - 1]) / step;
  }
  return NAN;
}

/// A curve with these readings, beginning at cycle 1.
inline lab::AmplificationCurve CurveOf(std::vector<double> readings, std::uint16_t number = 1) {
  lab::AmplificationCurve curve;
  curve.well.number = number;
  curve.well.name = "A" + std::to_string(number);
  curve.well.detector = "MYC";
  curve.well.task = "UNKN";
  for (std::size_t i = 0; i < readings.size(); ++i) {
    curve.cycles.push_back(static_cast<double>(i + 1));
  }
  curve.readings = std::move(readings);
  return curve;
}

/// A simulated measured curve: the light with baseline, drift and noise.
inline lab::AmplificationCurve Measured(const Growth& growth, std::uint16_t number = 1,
                                        std::size_t cycles = 40) {
  std::mt19937 random(1000U + number);
  std::normal_distribution<double> noise;
  std::vector<double> readings = LightOf(growth, cycles);
  readings.erase(readings.begin());
  for (std::size_t i = 0; i < readings.size(); ++i) {
    const double light = readings[i];
    readings[i] += growth.baseline + growth.drift * static_cast<double>(i + 1) +
                   noise(random) * (growth.noise + 0.003 * light);
  }
  return CurveOf(std::move(readings), number);
}

/// Analyses `curve` alone and returns its result.
inline lab::CqResult ResultOf(const lab::AmplificationCurve& curve,
                              const lab::CqOptions& options = {},
                              const std::vector<lab::Detector>& detectors = {}) {
  return lab::AnalyseCurves({curve}, detectors, options).wells.at(0);
}

}  // namespace vex2::test
