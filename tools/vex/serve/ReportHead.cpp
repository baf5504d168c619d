#include "tools/vex/serve/ReportHead.h"

#include <array>
#include <chrono>
#include <ctime>

namespace vex2::tool {

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

ReportSettings ReportHead() {
  ReportSettings settings;
  settings.program = std::string("vex ") + VEX2_VERSION;
  settings.made = nowText();
  return settings;
}

}  // namespace vex2::tool
