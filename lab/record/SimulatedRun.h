#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "lab/record/RunPlan.h"

namespace vex2::lab {

/// Of cycles and of melting readings.
inline constexpr std::uint32_t kMostSteps = 1000;

/// What a simulated run is made from: the same parameters give the same readings on every machine.
struct SimulationParameters {
  std::uint32_t wells = 96;     ///< 96 or 384
  std::uint32_t cycles = 40;    ///< of amplification, at least 1
  std::uint32_t meltSteps = 0;  ///< readings of a melting stage, or 0
  std::uint32_t seed = 1;
};

/// A dilution series on every row: five dilutions by ten and a control without template, side by
/// side in replicates; each row a target of its own. Copies double as far as the efficiency of
/// the target goes and there is material left; the detector adds a baseline, its drift and noise.
/// A melting stage shows each product come apart around a temperature of its own.
RunPlan SimulateRun(const SimulationParameters& parameters);

/// Sets the parameters that the log of a simulated run names. A parameter stays unchanged if the
/// log does not name it, or if its value is not a number or is too large.
void ReadParameters(std::string_view log, SimulationParameters& parameters);

/// Writes the run's readings as the table that `vex record` takes.
void WriteReadings(const RunPlan& plan, std::ostream& out);

}  // namespace vex2::lab
