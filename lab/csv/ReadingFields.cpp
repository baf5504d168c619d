#include "lab/csv/ReadingFields.h"

#include <algorithm>

#include "lab/Text.h"

namespace vex2::lab {

std::vector<std::string> ReadingNames(const RunLog& log) {
  std::vector<std::string> names = {"stage", "cycle", "time_s", "temperature_c"};
  if (log.channels.empty()) names.emplace_back("fluorescence");
  for (const std::string& channel : log.channels)
    names.push_back("fluorescence " + ToUtf8(channel));
  return names;
}

std::vector<std::string> ReadingFields(const RunReading& reading, const RunLog& log) {
  std::vector<std::string> fields = {reading.melting ? "melt" : "amplification",
                                     std::to_string(reading.cycle),
                                     ShortestQuotient(reading.time, kTimeSteps),
                                     ShortestQuotient(reading.temperature, kTemperatureSteps)};
  for (std::size_t channel = 0; channel < std::max<std::size_t>(log.channels.size(), 1);
       ++channel) {
    fields.push_back(reading.IsMissing(channel) ? "NA"
                                                : log.scale.MeasuredText(reading.values[channel]));
  }
  return fields;
}

}  // namespace vex2::lab
