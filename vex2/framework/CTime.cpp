#include "vex2/framework/CTime.h"

#include <locale.h>
#include <time.h>

#include <limits>
#include <string>

#include "vex2/framework/Host.h"

namespace {

// strftime takes the names of months from the locale, but documents contain English names.
locale_t plainLocale() {
  static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return locale;
}

}  // namespace

CTime CTime::GetCurrentTime() {
  return vex2::GetHost()->Now();
}

CString CTime::Format(const char* pattern) const {
  if (pattern == nullptr) return {};
  const time_t seconds = seconds_;
  tm parts{};
  tzset();
  if (localtime_r(&seconds, &parts) == nullptr) return {};

  // strftime returns 0 both for an empty result and for a buffer that is too small, so a sentinel
  // character makes every result non-empty. No conversion yields more than a few dozen characters,
  // but a pattern can ask for any width.
  const std::string guarded = std::string(pattern) + ".";
  constexpr std::size_t kLongest = std::size_t{64} * 1024;
  for (std::string text(guarded.size() + 256, '\0'); text.size() <= kLongest;
       text.resize(text.size() * 4)) {
    const auto length =
        strftime_l(text.data(), text.size(), guarded.c_str(), &parts, plainLocale());
    if (length > 0) return CString(std::string_view(text).substr(0, length - 1));
  }
  return {};
}

CTimeSpan operator-(const CTime& later, const CTime& earlier) {
  using Limits = std::numeric_limits<std::int64_t>;
  std::int64_t difference = 0;
  if (__builtin_sub_overflow(later.seconds_, earlier.seconds_, &difference)) {
    difference = later > earlier ? Limits::max() : Limits::min();
  }
  return CTimeSpan(difference);
}
