#include "lab/model/Readings.h"

#include <algorithm>
#include <limits>

#include "lab/Error.h"

namespace vex2::lab {

namespace {

constexpr double kNoReading = std::numeric_limits<double>::quiet_NaN();

void require(std::size_t index, std::size_t count, ErrorCode code, const char* what) {
  if (index < count) return;
  throw Error(code, "no " + std::string(what) + " has the index " + std::to_string(index) +
                        "; there are " + std::to_string(count));
}

}  // namespace

void Readings::requireFrame(std::size_t frame) const {
  require(frame, FrameCount(), ErrorCode::kNoSuchFrame, "frame");
}

void Readings::requireWell(std::size_t well) const {
  require(well, WellCount(), ErrorCode::kNoSuchWell, "well");
}

void Readings::requireChannel(std::size_t channel) const {
  require(channel, ChannelCount(), ErrorCode::kNoSuchValue, "channel");
}

std::optional<std::size_t> Readings::FindWell(std::uint16_t number) const {
  const auto found = std::find(wells_.begin(), wells_.end(), number);
  if (found == wells_.end()) return std::nullopt;
  return static_cast<std::size_t>(found - wells_.begin());
}

std::span<const std::uint16_t> Readings::Values() const {
  return {values_.get(), FrameCount() * WellCount() * kReadingValues};
}

std::span<const std::uint16_t> Readings::Values(std::size_t frame) const {
  requireFrame(frame);
  const std::size_t size = WellCount() * kReadingValues;
  return Values().subspan(frame * size, size);
}

std::span<const std::uint16_t> Readings::Values(std::size_t frame, std::size_t well) const {
  requireWell(well);
  return Values(frame).subspan(well * kReadingValues, kReadingValues);
}

std::uint16_t Readings::At(std::size_t frame, std::size_t well, std::size_t value) const {
  require(value, kReadingValues, ErrorCode::kNoSuchValue, "value");
  return Values(frame, well)[value];
}

double Readings::fluorescence(std::size_t cell, std::size_t channel) const {
  if ((missing_[static_cast<std::ptrdiff_t>(cell)] >> channel & 1U) != 0) return kNoReading;
  return meaning_->scale.Measured(Values()[cell * kReadingValues + channel]);
}

std::optional<double> Readings::Fluorescence(std::size_t frame, std::size_t well,
                                             std::size_t channel) const {
  requireFrame(frame);
  requireWell(well);
  if (!meaning_) return std::nullopt;
  requireChannel(channel);
  const double reading = fluorescence(frame * WellCount() + well, channel);
  return reading == reading ? std::optional(reading) : std::nullopt;
}

std::vector<double> Readings::FluorescenceOf(std::size_t channel) const {
  std::vector<double> readings(FrameCount() * WellCount(), kNoReading);
  if (!meaning_) return readings;
  requireChannel(channel);
  for (std::size_t cell = 0; cell < readings.size(); ++cell) {
    readings[cell] = fluorescence(cell, channel);
  }
  return readings;
}

}  // namespace vex2::lab
