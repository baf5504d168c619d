#include "lab/picture/ReportHead.h"

#include <array>
#include <chrono>
#include <ctime>
#include <utility>

namespace vex2::lab {

namespace {

// The current time in UTC, because a report may be read in another time zone.
std::string nowText() {
  const auto now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm utc{};
  gmtime_r(&now, &utc);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &utc);
  return text.data();
}

}  // namespace

ReportSettings ReportHead(std::string program) {
  ReportSettings settings;
  settings.program = std::move(program);
  settings.made = nowText();
  return settings;
}

}  // namespace vex2::lab
