#include "tools/vex/document/ReadingFields.h"

namespace vex2::tool {

namespace {

constexpr std::uint32_t kTemperatureScale = 100;
constexpr std::uint32_t kTimeScale = 1000;

}  // namespace

const std::vector<std::string>& ReadingNames() {
  static const std::vector<std::string> names = {"stage", "cycle", "time_s", "temperature_c",
                                                 "fluorescence"};
  return names;
}

std::vector<std::string> ReadingFields(const RunReading& reading, const RunLog& log) {
  return {reading.melting ? "melt" : "amplification", std::to_string(reading.cycle),
          ShortestQuotient(reading.time, kTimeScale),
          ShortestQuotient(reading.temperature, kTemperatureScale),
          ShortestQuotient(reading.value, log.scale)};
}

}  // namespace vex2::tool
