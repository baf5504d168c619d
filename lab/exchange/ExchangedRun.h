#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "lab/record/RecordingPlan.h"

namespace vex2::lab {

/// The readings of one well in one channel and one stage, as a foreign file has them.
struct Curve {
  std::uint16_t well = 0;  ///< number, from 1
  std::size_t channel = 0;
  bool melting = false;
  std::vector<std::uint16_t> cycles;  ///< of amplification: from 1, none twice; else empty
  std::vector<float> temperatures;    ///< one for each reading, or none at all; NaN: not given
  std::vector<double> readings;       ///< NaN where one is missing
  std::vector<double> times;          ///< seconds, one for each reading, or none at all
};

/// A run as exchange formats hold it: what a recording plan says, and curves in place of frames.
/// Texts are UTF-8.
struct ExchangedRun {
  std::string name;  ///< as the source calls the run; may be empty
  RecordingPlan plan;
  std::vector<Curve> curves;
  std::optional<std::string> log;  ///< of the document that was exported, in Latin-1
  bool hasSettings = true;         ///< otherwise that document had none
  bool hasSetup = true;            ///< otherwise that document had no plate setup
};

}  // namespace vex2::lab
