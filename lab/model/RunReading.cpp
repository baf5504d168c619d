#include "lab/model/RunReading.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace vex2::lab {

namespace {

enum Leading {
  kFilled,
  kCycle,
  kTemperature,
  kStage,
  kFirstReading,
  kTimeHigh,
  kTimeLow,
  kMissing
};

constexpr std::uint16_t kMeltingMarker = 65000;

std::uint16_t firstReading(std::uint16_t value) {
  if (value == kMeltingMarker) return kMeltingMarker - 1;
  return std::max<std::uint16_t>(value, 1);
}

}  // namespace

Vex2WellRecord EncodeReading(const RunReading& reading, bool beginsMelting) {
  Vex2WellRecord record;
  record.leading[kFilled] = 1;
  record.leading[kCycle] = reading.cycle;
  record.leading[kTemperature] = reading.temperature;
  record.leading[kStage] = reading.melting ? 1 : 0;
  record.leading[kFirstReading] = beginsMelting ? kMeltingMarker : firstReading(reading.values[0]);
  record.leading[kTimeHigh] = static_cast<std::uint16_t>(reading.time >> 16U);
  record.leading[kTimeLow] = static_cast<std::uint16_t>(reading.time & 0xFFFFU);
  record.leading[kMissing] = reading.missing;
  std::copy(reading.values.begin(), reading.values.end(), record.data);
  return record;
}

RunReading DecodeReading(const Vex2WellRecord& record) {
  RunReading reading{
      .cycle = record.leading[kCycle],
      .temperature = record.leading[kTemperature],
      .melting = record.leading[kStage] == 1,
      .time = std::uint32_t{record.leading[kTimeHigh]} << 16U | record.leading[kTimeLow],
      .missing = record.leading[kMissing]};
  std::copy_n(record.data, kMostChannels, reading.values.begin());
  return reading;
}

std::string ShortestQuotient(std::uint32_t value, std::uint32_t divisor) {
  // In fixed notation, the quotient has at most 10 digits before the point, and its shortest text
  // always fits.
  std::array<char, 64> text{};
  const double quotient = static_cast<double>(value) / static_cast<double>(divisor);
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), quotient, std::chars_format::fixed);
  return {text.data(), end.ptr};
}

}  // namespace vex2::lab
