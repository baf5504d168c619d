#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "lab/record/RecordingPlan.h"

namespace vex2::lab {

/// The readings of one well in one channel and one stage, as they are in another program's file.
struct Curve {
  std::uint16_t well = 0;  ///< well number, from 1
  std::size_t channel = 0;
  bool melting = false;
  std::vector<std::uint16_t> cycles;  ///< only for amplification: cycles from 1, each once
  std::vector<float> temperatures;    ///< one for each reading, or empty; NaN if not given
  std::vector<double> readings;       ///< NaN for a missing reading
  std::vector<double> times;          ///< seconds, one for each reading, or empty
};

/// A run as exchange formats hold it: a recording plan, and curves in place of frames. Texts are
/// UTF-8.
struct ExchangedRun {
  std::string name;  ///< the name of the run in the source; may be empty
  RecordingPlan plan;
  std::vector<Curve> curves;
  std::optional<std::string> log;  ///< log of the document that was exported, in Latin-1
  bool hasSettings = true;         ///< whether the exported document had settings
  bool hasSetup = true;            ///< whether the exported document had a plate setup
};

}  // namespace vex2::lab
