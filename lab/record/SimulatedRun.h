#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "lab/record/RunPlan.h"

namespace vex2::lab {

/// The largest number of cycles, and of readings in the melting stage.
inline constexpr std::uint32_t kMostSteps = 1000;

/// The parameters of a simulated run. The same parameters give the same readings on every machine.
struct SimulationParameters {
  std::uint32_t wells = 96;     ///< 96 or 384
  std::uint32_t cycles = 40;    ///< of amplification, at least 1
  std::uint32_t meltSteps = 0;  ///< readings in the melting stage; 0 for none
  std::uint32_t seed = 1;
};

/// Simulates a dilution series in every row: five dilutions by a factor of ten and a control
/// without template, each in adjacent replicates. Each row has its own target. Copies double as far
/// as the efficiency of the target and the remaining material allow. The detector adds a drifting
/// baseline and noise. In a melting stage each product melts around its own temperature.
RunPlan SimulateRun(const SimulationParameters& parameters);

/// Sets the parameters that the log of a simulated run states. A parameter stays unchanged if the
/// log does not state it, or if its value is not a number or is too large.
void ReadParameters(std::string_view log, SimulationParameters& parameters);

/// Writes the run's readings as a table that `vex record` can read.
void WriteReadings(const RunPlan& plan, std::ostream& out);

}  // namespace vex2::lab
