#include "lab/model/RunStart.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "lab/Text.h"
#include "vex2/framework/Host.h"

namespace vex2::lab {

namespace {

using namespace std::chrono;

constexpr std::size_t kTimeLength = 19;  // length of "2026-11-22T08:00:00"
constexpr int kFirstYear = 2000;
constexpr int kLastYear = 2099;

// The number in the `count` digits at `at` of `text`; nothing if they are not all digits.
std::optional<unsigned> digits(std::string_view text, std::size_t at, std::size_t count) {
  const std::string_view part = text.substr(at, count);
  const bool plain = std::all_of(part.begin(), part.end(), [](char character) {
    return character >= '0' && character <= '9';
  });
  return plain && part.size() == count ? NumberIn<unsigned>(part) : std::nullopt;
}

std::optional<sys_seconds> wallClockIn(std::string_view text) {
  if (text.size() != kTimeLength || text[4] != '-' || text[7] != '-' || text[10] != 'T' ||
      text[13] != ':' || text[16] != ':') {
    return std::nullopt;
  }
  const auto years = digits(text, 0, 4);
  const auto months = digits(text, 5, 2);
  const auto days = digits(text, 8, 2);
  const auto hour = digits(text, 11, 2);
  const auto minute = digits(text, 14, 2);
  const auto second = digits(text, 17, 2);
  if (!years || !months || !days || !hour || !minute || !second) return std::nullopt;
  const year_month_day date{year(static_cast<int>(*years)), month(*months), day(*days)};
  if (!date.ok() || *years < kFirstYear || *years > kLastYear || *hour > 23 || *minute > 59 ||
      *second > 59) {
    return std::nullopt;
  }
  return sys_days(date) + hours(*hour) + minutes(*minute) + seconds(*second);
}

bool isZone(std::string_view zone) {
  if (zone == "Z") return true;
  if (zone.size() != 6 || (zone[0] != '+' && zone[0] != '-') || zone[3] != ':') return false;
  const auto hour = digits(zone, 1, 2);
  const auto minute = digits(zone, 4, 2);
  return hour && minute && *hour < 24 && *minute < 60;
}

std::string textOf(const TimeStamp& time) {
  std::array<char, 32> text{};
  const auto& [year, month, day, hour, minute, second] = time.fields;
  std::snprintf(text.data(), text.size(), "20%02u-%02u-%02uT%02u:%02u:%02u", year, month, day, hour,
                minute, second);
  return text.data();
}

TimeStamp stampOf(sys_seconds time) {
  const auto days = floor<std::chrono::days>(time);
  const year_month_day date(days);
  const hh_mm_ss clock(time - days);
  const std::array<std::int64_t, 6> fields = {
      int{date.year()} - kFirstYear, unsigned{date.month()},  unsigned{date.day()},
      clock.hours().count(),         clock.minutes().count(), clock.seconds().count()};
  TimeStamp stamp;
  std::transform(fields.begin(), fields.end(), stamp.fields,
                 [](std::int64_t field) { return static_cast<std::uint8_t>(field); });
  return stamp;
}

}  // namespace

std::optional<RunStart> RunStart::Parse(std::string_view text) {
  const auto wallClock = wallClockIn(text.substr(0, kTimeLength));
  if (!wallClock || !isZone(text.substr(kTimeLength))) return std::nullopt;
  return RunStart(std::string(text), *wallClock);
}

RunStart RunStart::Now() {
  const sys_seconds now{seconds(GetHost()->Now().GetTime())};
  return {textOf(stampOf(now)) + "Z", now};
}

std::string_view RunStart::Zone() const {
  return std::string_view(text_).substr(kTimeLength);
}

TimeStamp RunStart::StampAfter(std::uint32_t milliseconds) const {
  return stampOf(wallClock_ + seconds(milliseconds / 1000));
}

}  // namespace vex2::lab
