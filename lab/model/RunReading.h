#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "vex2/run/Vex2WellRecord.h"

/// How a document stores a reading of a run: the recorder encodes it, and the export decodes it.
namespace vex2::lab {

/// The channels that a well can have in a document: each of them takes a data value of the record,
/// and a bit that says that its reading is missing.
constexpr std::size_t kMostChannels = 16;

/// The steps of a second and of a degree Celsius in which times and temperatures are stored.
constexpr std::uint32_t kTimeSteps = 1000;
constexpr std::uint32_t kTemperatureSteps = 100;

/// What one well gave at one time.
struct RunReading {
  std::uint16_t cycle = 0;        ///< within its stage, from 1
  std::uint16_t temperature = 0;  ///< hundredths of a degree Celsius
  bool melting = false;           ///< else amplification
  std::uint32_t time = 0;         ///< milliseconds since the run began
  /// The stored fluorescence of each channel; a run without named channels has one.
  std::array<std::uint16_t, kMostChannels> values{};
  std::uint16_t missing = 0;  ///< bit c: channel c has no reading, and its value is 0

  bool IsMissing(std::size_t channel) const { return (missing >> channel & 1U) != 0; }

  friend bool operator==(const RunReading&, const RunReading&) = default;
};

/// The record of a reading. `beginsMelting` puts the marker of the first frame of a melting stage
/// into it; no other record looks as if it had one.
Vex2WellRecord EncodeReading(const RunReading& reading, bool beginsMelting);
/// Decodes the reading in a record. The result has a meaning only for a record that a recorder
/// wrote: nothing is checked.
RunReading DecodeReading(const Vex2WellRecord& record);

/// The shortest text that stands for `value` divided by `divisor`, which is not 0: what is read
/// back from it is the same number.
std::string ShortestQuotient(std::uint32_t value, std::uint32_t divisor);

}  // namespace vex2::lab
