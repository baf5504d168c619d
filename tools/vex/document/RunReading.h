#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vex2/run/Vex2WellRecord.h"

/// How a reading of a run lies in a document. The recorder writes it so, the export undoes it.
namespace vex2::tool {

/// What one well gave at one time.
struct RunReading {
  std::uint16_t cycle = 0;        ///< within its stage, from 1
  std::uint16_t temperature = 0;  ///< hundredths of a degree Celsius
  bool melting = false;           ///< else amplification
  std::uint32_t time = 0;         ///< milliseconds since the run began
  std::uint16_t value = 0;        ///< fluorescence times the document's scale

  friend bool operator==(const RunReading&, const RunReading&) = default;
};

/// The record of a reading. `beginsMelting` puts the marker of the first frame of a melting stage
/// into it; no other record looks as if it had one.
Vex2WellRecord EncodeReading(const RunReading& reading, bool beginsMelting);
/// The reading in a record; of any record that no recorder made, whatever stands in the places.
RunReading DecodeReading(const Vex2WellRecord& record);

constexpr std::uint32_t kLargestScale = 1'000'000;

/// The scale that a document's log names: by it values were multiplied before they were rounded. 1
/// for a log without a usable one.
std::uint32_t ScaleInLog(std::string_view log);
/// `log` with this scale, in place of one that it names. The log is lines of key=value.
std::string LogWithScale(std::string_view log, std::uint32_t scale);

/// The shortest text that stands for `value` divided by `divisor`, which is not 0: what is read
/// back from it is the same number.
std::string ShortestQuotient(std::uint32_t value, std::uint32_t divisor);

}  // namespace vex2::tool
