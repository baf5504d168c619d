#pragma once

#include <compare>
#include <cstdint>

#include "vex2/framework/CString.h"
#include "vex2/framework/CTimeSpan.h"
#include "vex2/framework/Export.h"

/// A moment, in whole seconds since the beginning of 1970 UTC.
class VEX2_API CTime {
 public:
  constexpr CTime() = default;
  constexpr explicit CTime(std::int64_t secondsSince1970) : seconds_(secondsSince1970) {}

  /// The present time as the installed host has it, see `vex2::Host::Now`.
  static CTime GetCurrentTime();

  std::int64_t GetTime() const { return seconds_; }

  /// The moment in local time, written by a pattern as of `strftime`, with the English names of
  /// the "C" locale whatever the process's locale is: "%b %d, %Y %I:%M %p" gives
  /// "Mar 07, 2002 04:05 PM". Empty for a null pattern and for a year that the calendar of the
  /// system cannot express.
  CString Format(const char* pattern) const;

  friend constexpr auto operator<=>(const CTime&, const CTime&) = default;

  /// The time from `earlier` to `later`. What 64 bits cannot hold becomes the nearest that they
  /// can.
  friend VEX2_API CTimeSpan operator-(const CTime& later, const CTime& earlier);

 private:
  std::int64_t seconds_ = 0;
};
