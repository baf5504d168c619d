#pragma once

#include <compare>
#include <cstdint>

#include "vex2/framework/CString.h"
#include "vex2/framework/Export.h"

/// A span of time in whole seconds. In a negative span, all parts are negative or 0.
class VEX2_API CTimeSpan {
 public:
  constexpr CTimeSpan() = default;
  /// A span of this many seconds.
  constexpr explicit CTimeSpan(std::int64_t seconds) : seconds_(seconds) {}
  /// The sum of days, hours, minutes and seconds.
  constexpr CTimeSpan(std::int32_t days, int hours, int minutes, int seconds)
      : seconds_(((days * std::int64_t{24} + hours) * 60 + minutes) * 60 + seconds) {}

  /// The number of whole days.
  std::int64_t GetDays() const { return seconds_ / kSecondsPerDay; }
  /// The hours after the whole days, 0 to 23.
  int GetHours() const { return static_cast<int>(seconds_ / 3600 % 24); }
  /// The minutes after the whole hours, 0 to 59.
  int GetMinutes() const { return static_cast<int>(seconds_ / 60 % 60); }
  /// The seconds after the whole minutes, 0 to 59.
  int GetSeconds() const { return static_cast<int>(seconds_ % 60); }
  /// The whole span in seconds.
  std::int64_t GetTotalSeconds() const { return seconds_; }

  /// Returns `pattern` with %D replaced by the days, %H, %M and %S by the hours, minutes and
  /// seconds with two digits each, and %% by a percent sign. All other characters stay as they are.
  /// Returns the empty text for a null pattern.
  CString Format(const char* pattern) const;

  /// Compares two spans; the longer one is greater.
  friend constexpr auto operator<=>(const CTimeSpan&, const CTimeSpan&) = default;

 private:
  static constexpr std::int64_t kSecondsPerDay = 24 * 60 * 60;

  std::int64_t seconds_ = 0;
};
