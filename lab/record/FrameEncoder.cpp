#include "lab/record/FrameEncoder.h"

#include <fmt/core.h>

#include <cmath>

#include "lab/Error.h"

namespace vex2::lab {

std::vector<RunReading> FrameEncoder::Encode(const CollectedFrame& frame) {
  const std::size_t channels = ChannelCount(plan_);
  std::vector<RunReading> readings(plan_.wells.size());
  for (std::size_t well = 0; well < readings.size(); ++well) {
    RunReading& reading = readings[well];
    encodeShared(frame.Cells()[well * channels], reading);
    for (std::size_t channel = 0; channel < channels; ++channel) {
      const ReadingRow& row = frame.Cells()[well * channels + channel];
      if (row.fluorescence) {
        reading.values[channel] = encodeValue(row);
      } else {
        reading.missing = static_cast<std::uint16_t>(reading.missing | 1U << channel);
      }
    }
  }
  return readings;
}

void FrameEncoder::encodeShared(const ReadingRow& row, RunReading& reading) {
  reading.melting = row.melting;
  reading.cycle = row.cycle;
  reading.time =
      static_cast<std::uint32_t>(roundTo(rounding_.times, row, "time", row.seconds, kTimeSteps));
  reading.temperature = static_cast<std::uint16_t>(
      roundTo(rounding_.temperatures, row, "temperature", row.temperature, kTemperatureSteps));
}

double FrameEncoder::roundTo(RoundedNumbers& rounded, const ReadingRow& row, const char* what,
                             double number, double parts) {
  const double stored = std::round(number * parts);
  if (stored / parts != number) {
    requireExact(row, what, number, stored / parts);
    rounded.Add(number - stored / parts);
  }
  return stored;
}

std::optional<std::string> FrameEncoder::WhyUnfit(const ReadingRow& row) const {
  if (!row.fluorescence || plan_.scale.Store(*row.fluorescence)) return std::nullopt;
  const double reading = *row.fluorescence;
  if (!plan_.scale.HasOffset()) {
    return fmt::format("row {}: the reading {} does not fit in 16 bits with the scale {}",
                       row.number, PlainText(reading), plan_.scale.ScaleText());
  }
  return fmt::format(
      "row {}: the reading {} does not fit in 16 bits with the scale {} and the offset {}",
      row.number, PlainText(reading), plan_.scale.ScaleText(), plan_.scale.OffsetText());
}

std::uint16_t FrameEncoder::encodeValue(const ReadingRow& row) {
  if (const auto why = WhyUnfit(row)) {
    const bool isBelow = *row.fluorescence < plan_.scale.Offset().Value();
    throw Error(ErrorCode::kDocument, file_, *why, std::nullopt,
                isBelow ? ErrorRemedy::kLowerOffset : ErrorRemedy::kNone);
  }
  const double reading = *row.fluorescence;
  const auto stored = plan_.scale.Store(reading);
  const double kept = plan_.scale.Measured(*stored);
  if (kept != reading) {
    requireExact(row, "reading", reading, kept);
    rounding_.readings.Add(reading - kept);
  }
  return *stored;
}

void FrameEncoder::requireExact(const ReadingRow& row, const std::string& what, double number,
                                double stored) const {
  if (!isExact_) return;
  throw Error(ErrorCode::kDocument, file_,
              fmt::format("row {}: the {} {} would be rounded to {}", row.number, what,
                          PlainText(number), PlainText(stored)),
              std::nullopt, ErrorRemedy::kAllowRounding);
}

}  // namespace vex2::lab
