#include "tools/vex/document/RunReading.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "tools/vex/text/Text.h"

namespace vex2::tool {

namespace {

enum Leading { kFilled, kCycle, kTemperature, kStage, kFirstReading, kTimeHigh, kTimeLow };

constexpr std::uint16_t kMeltingMarker = 65000;
constexpr std::string_view kScaleKey = "scale=";

std::uint16_t firstReading(std::uint16_t value) {
  if (value == kMeltingMarker) return kMeltingMarker - 1;
  return std::max<std::uint16_t>(value, 1);
}

// Calls `take` with each line of `text`, without its end.
template <typename Take>
void forEachLine(std::string_view text, const Take& take) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    take(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

}  // namespace

Vex2WellRecord EncodeReading(const RunReading& reading, bool beginsMelting) {
  Vex2WellRecord record;
  record.leading[kFilled] = 1;
  record.leading[kCycle] = reading.cycle;
  record.leading[kTemperature] = reading.temperature;
  record.leading[kStage] = reading.melting ? 1 : 0;
  record.leading[kFirstReading] = beginsMelting ? kMeltingMarker : firstReading(reading.value);
  record.leading[kTimeHigh] = static_cast<std::uint16_t>(reading.time >> 16U);
  record.leading[kTimeLow] = static_cast<std::uint16_t>(reading.time & 0xFFFFU);
  record.data[0] = reading.value;
  return record;
}

RunReading DecodeReading(const Vex2WellRecord& record) {
  return {.cycle = record.leading[kCycle],
          .temperature = record.leading[kTemperature],
          .melting = record.leading[kStage] == 1,
          .time = std::uint32_t{record.leading[kTimeHigh]} << 16U | record.leading[kTimeLow],
          .value = record.data[0]};
}

std::uint32_t ScaleInLog(std::string_view log) {
  std::uint32_t scale = 1;
  forEachLine(log, [&](std::string_view line) {
    if (!line.starts_with(kScaleKey)) return;
    const auto number = NumberIn<std::uint32_t>(line.substr(kScaleKey.size()));
    if (number && *number >= 1 && *number <= kLargestScale) scale = *number;
  });
  return scale;
}

std::string LogWithScale(std::string_view log, std::uint32_t scale) {
  std::string result;
  forEachLine(log, [&](std::string_view line) {
    if (!line.starts_with(kScaleKey)) result.append(line).append("\n");
  });
  return result.append(kScaleKey).append(std::to_string(scale)).append("\n");
}

std::string ShortestQuotient(std::uint32_t value, std::uint32_t divisor) {
  // Fixed notation is as short as 9 digits before the point and 9 behind it at most.
  std::array<char, 64> text{};
  const double quotient = static_cast<double>(value) / static_cast<double>(divisor);
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), quotient, std::chars_format::fixed);
  return {text.data(), end.ptr};
}

}  // namespace vex2::tool
