#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vex2/run/TimeStamp.h"

namespace vex2::lab {

/// When a run began: a date and time of day from 2000 to 2099 in a time zone of which the distance
/// to UTC is known.
class RunStart {
 public:
  /// The start that `text` stands for, as "2026-11-22T08:00:00Z" or with "+01:00" for the "Z".
  /// Returns nothing for any other text, such as one without a zone.
  static std::optional<RunStart> Parse(std::string_view text);
  /// The present time in UTC, from the host's clock.
  static RunStart Now();

  /// As `Parse` takes it.
  const std::string& Text() const { return text_; }
  /// "Z", or "+01:00".
  std::string_view Zone() const;
  TimeStamp Stamp() const { return StampAfter(0); }
  /// The time of day in the same zone, `milliseconds` later; parts of a second are cut off.
  TimeStamp StampAfter(std::uint32_t milliseconds) const;

  friend bool operator==(const RunStart&, const RunStart&) = default;

 private:
  RunStart(std::string text, std::chrono::sys_seconds wallClock)
      : text_(std::move(text)), wallClock_(wallClock) {}

  std::string text_;
  std::chrono::sys_seconds wallClock_;  ///< as a clock in the zone shows it
};

}  // namespace vex2::lab
