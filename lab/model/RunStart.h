#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vex2/run/TimeStamp.h"

namespace vex2::lab {

/// The start of a run: date and time of day, from 2000 to 2099, in a time zone with a known
/// difference to UTC.
class RunStart {
 public:
  /// Parses a start such as "2026-11-22T08:00:00Z", or with "+01:00" in place of "Z". Returns
  /// nothing for any other text, including one without a zone.
  static std::optional<RunStart> Parse(std::string_view text);
  /// The present time in UTC, from the host's clock.
  static RunStart Now();

  /// The text of the start, in the form that `Parse` takes.
  const std::string& Text() const { return text_; }
  /// The zone as a text: "Z", or "+01:00".
  std::string_view Zone() const;
  TimeStamp Stamp() const { return StampAfter(0); }
  /// The date and time `milliseconds` after the start, in the same zone; fractions of a second are
  /// cut off.
  TimeStamp StampAfter(std::uint32_t milliseconds) const;

  friend bool operator==(const RunStart&, const RunStart&) = default;

 private:
  RunStart(std::string text, std::chrono::sys_seconds wallClock)
      : text_(std::move(text)), wallClock_(wallClock) {}

  std::string text_;
  std::chrono::sys_seconds wallClock_;  ///< the time on a clock in the zone
};

}  // namespace vex2::lab
