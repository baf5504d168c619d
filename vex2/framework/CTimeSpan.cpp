#include "vex2/framework/CTimeSpan.h"

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace {

std::string twoDigits(int value) {
  char text[16];
  std::snprintf(text, sizeof text, "%02d", value);
  return text;
}

std::optional<std::string> partNamed(char letter, const CTimeSpan& span) {
  switch (letter) {
    case 'D':
      return std::to_string(span.GetDays());
    case 'H':
      return twoDigits(span.GetHours());
    case 'M':
      return twoDigits(span.GetMinutes());
    case 'S':
      return twoDigits(span.GetSeconds());
    case '%':
      return "%";
    default:
      return std::nullopt;
  }
}

}  // namespace

CString CTimeSpan::Format(const char* pattern) const {
  const std::string_view rest = pattern != nullptr ? pattern : "";
  std::string text;
  for (std::size_t at = 0; at < rest.size(); ++at) {
    if (rest[at] == '%' && at + 1 < rest.size()) {
      if (const auto part = partNamed(rest[at + 1], *this)) {
        text += *part;
        ++at;
        continue;
      }
    }
    text += rest[at];
  }
  return CString(text);
}
