#pragma once

#include <compare>
#include <cstdint>

#include "vex2/framework/CString.h"
#include "vex2/framework/CTimeSpan.h"
#include "vex2/framework/Export.h"

/// A point in time, in whole seconds since the beginning of 1970 UTC.
class VEX2_API CTime {
 public:
  constexpr CTime() = default;
  /// The time this many seconds after the beginning of 1970 UTC.
  constexpr explicit CTime(std::int64_t secondsSince1970) : seconds_(secondsSince1970) {}

  /// The current time, as the installed host reports it; see `vex2::Host::Now`.
  static CTime GetCurrentTime();

  /// Seconds since the beginning of 1970 UTC.
  std::int64_t GetTime() const { return seconds_; }

  /// The time as local time, formatted by a pattern of `strftime` with the English names of the "C"
  /// locale, independent of the locale of the process: "%b %d, %Y %I:%M %p" gives "Mar 07, 2002
  /// 04:05 PM". Returns the empty text for a null pattern, and for a year that the system's
  /// calendar cannot express.
  CString Format(const char* pattern) const;

  /// Compares two times; the later one is greater.
  friend constexpr auto operator<=>(const CTime&, const CTime&) = default;

  /// The span from `earlier` to `later`. A result that does not fit in 64 bits becomes the nearest
  /// value that does.
  friend VEX2_API CTimeSpan operator-(const CTime& later, const CTime& earlier);

 private:
  std::int64_t seconds_ = 0;
};
