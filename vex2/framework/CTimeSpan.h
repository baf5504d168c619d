#pragma once

#include <compare>
#include <cstdint>

#include "vex2/framework/CString.h"
#include "vex2/framework/Export.h"

/// A length of time in whole seconds. In a negative span, all parts are negative or 0.
class VEX2_API CTimeSpan {
 public:
  constexpr CTimeSpan() = default;
  /// A span of this many seconds.
  constexpr explicit CTimeSpan(std::int64_t seconds) : seconds_(seconds) {}
  /// The sum of the four parts.
  constexpr CTimeSpan(std::int32_t days, int hours, int minutes, int seconds)
      : seconds_(((days * std::int64_t{24} + hours) * 60 + minutes) * 60 + seconds) {}

  /// The whole days.
  std::int64_t GetDays() const { return seconds_ / kSecondsPerDay; }
  /// The hours that are left of the last day, 0 to 23.
  int GetHours() const { return static_cast<int>(seconds_ / 3600 % 24); }
  /// The minutes that are left of the last hour, 0 to 59.
  int GetMinutes() const { return static_cast<int>(seconds_ / 60 % 60); }
  /// The seconds that are left of the last minute, 0 to 59.
  int GetSeconds() const { return static_cast<int>(seconds_ % 60); }
  /// The whole span in seconds.
  std::int64_t GetTotalSeconds() const { return seconds_; }

  /// `pattern` with %D replaced by the days, %H, %M and %S by the hours, minutes and seconds with
  /// two digits, and %% by a percent sign. Any other character stands for itself. A null pattern
  /// gives the empty text.
  CString Format(const char* pattern) const;

  /// Compares two spans; the longer one is greater.
  friend constexpr auto operator<=>(const CTimeSpan&, const CTimeSpan&) = default;

 private:
  static constexpr std::int64_t kSecondsPerDay = 24 * 60 * 60;

  std::int64_t seconds_ = 0;
};
