#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "vex2/run/Vex2WellRecord.h"

/// How a document stores a reading of a run: the recorder encodes it, and the export decodes it.
namespace vex2::lab {

/// The number of channels that a well can have in a document. Each channel takes a data value of
/// the record, and one bit that says whether its reading is missing.
constexpr std::size_t kMostChannels = 16;

/// Times are stored in this fraction of a second, temperatures in this fraction of a degree
/// Celsius.
constexpr std::uint32_t kTimeSteps = 1000;
constexpr std::uint32_t kTemperatureSteps = 100;

/// The readings of one well at one time.
struct RunReading {
  std::uint16_t cycle = 0;        ///< within its stage, from 1
  std::uint16_t temperature = 0;  ///< hundredths of a degree Celsius
  /// Whether the reading belongs to the melting stage; otherwise it belongs to the amplification.
  bool melting = false;
  std::uint32_t time = 0;  ///< milliseconds since the run began
  /// The stored fluorescence of each channel; a run without named channels has one.
  std::array<std::uint16_t, kMostChannels> values{};
  std::uint16_t missing = 0;  ///< bit c: channel c has no reading, and its value is 0

  bool IsMissing(std::size_t channel) const { return (missing >> channel & 1U) != 0; }

  friend bool operator==(const RunReading&, const RunReading&) = default;
};

/// Encodes a reading as a record. `beginsMelting` adds the marker of the first frame of a melting
/// stage. A record without the marker never looks like one with it.
Vex2WellRecord EncodeReading(const RunReading& reading, bool beginsMelting);
/// Decodes the reading in a record. The result has a meaning only for a record that a recorder
/// wrote: nothing is checked.
RunReading DecodeReading(const Vex2WellRecord& record);

/// The shortest decimal text for `value` divided by `divisor`: reading the text gives the same
/// double. `divisor` must not be 0.
std::string ShortestQuotient(std::uint32_t value, std::uint32_t divisor);

}  // namespace vex2::lab
