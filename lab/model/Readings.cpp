#include "lab/model/Readings.h"

#include <fmt/core.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "lab/Error.h"
#include "lab/model/ReadingMatrix.h"
#include "vex2/format/DataBlockHead.h"

namespace vex2::lab {

// Headers of programs see no header of the format.
static_assert(kReadingValues == kStoredDataValues);

namespace {

constexpr double kNoReading = std::numeric_limits<double>::quiet_NaN();

void require(std::size_t index, std::size_t count, ErrorCode code, const char* what) {
  if (index < count) return;
  throw Error(code, fmt::format("no {} has the index {}; there are {}", what, index, count));
}

void requireFrame(const Readings& readings, std::size_t frame) {
  require(frame, readings.FrameCount(), ErrorCode::kNoSuchFrame, "frame");
}

void requireWell(const Readings& readings, std::size_t well) {
  require(well, readings.WellCount(), ErrorCode::kNoSuchWell, "well");
}

void requireChannel(const Readings& readings, std::size_t channel) {
  require(channel, readings.ChannelCount(), ErrorCode::kNoSuchValue, "channel");
}

double fluorescenceOf(const auto& matrix, std::size_t cell, std::size_t channel) {
  if ((matrix.missing[static_cast<std::ptrdiff_t>(cell)] >> channel & 1U) != 0) return kNoReading;
  return matrix.meaning->scale.Measured(
      matrix.values[static_cast<std::ptrdiff_t>(cell * kReadingValues + channel)]);
}

}  // namespace

Readings::Readings() : Readings(std::make_shared<const Matrix>()) {}

Readings::Readings(std::shared_ptr<const Matrix> matrix) : matrix_(std::move(matrix)) {}

std::size_t Readings::FrameCount() const {
  return matrix_->axis.size();
}

std::size_t Readings::WellCount() const {
  return matrix_->wells.size();
}

const std::vector<std::uint16_t>& Readings::Wells() const {
  return matrix_->wells;
}

const std::vector<FramePosition>& Readings::Axis() const {
  return matrix_->axis;
}

const std::optional<ReadingMeaning>& Readings::Meaning() const {
  return matrix_->meaning;
}

std::size_t Readings::ChannelCount() const {
  return matrix_->meaning ? matrix_->meaning->ChannelCount() : 0;
}

std::optional<std::size_t> Readings::FindWell(std::uint16_t number) const {
  const auto found = std::find(Wells().begin(), Wells().end(), number);
  if (found == Wells().end()) return std::nullopt;
  return static_cast<std::size_t>(found - Wells().begin());
}

std::span<const std::uint16_t> Readings::Values() const {
  return {matrix_->values.get(), FrameCount() * WellCount() * kReadingValues};
}

std::span<const std::uint16_t> Readings::Values(std::size_t frame) const {
  requireFrame(*this, frame);
  const std::size_t size = WellCount() * kReadingValues;
  return Values().subspan(frame * size, size);
}

std::span<const std::uint16_t> Readings::Values(std::size_t frame, std::size_t well) const {
  requireWell(*this, well);
  return Values(frame).subspan(well * kReadingValues, kReadingValues);
}

std::uint16_t Readings::At(std::size_t frame, std::size_t well, std::size_t value) const {
  require(value, kReadingValues, ErrorCode::kNoSuchValue, "value");
  return Values(frame, well)[value];
}

std::optional<double> Readings::Fluorescence(std::size_t frame, std::size_t well,
                                             std::size_t channel) const {
  requireFrame(*this, frame);
  requireWell(*this, well);
  if (!matrix_->meaning) return std::nullopt;
  requireChannel(*this, channel);
  const double reading = fluorescenceOf(*matrix_, frame * WellCount() + well, channel);
  return reading == reading ? std::optional(reading) : std::nullopt;
}

std::vector<double> Readings::FluorescenceOf(std::size_t channel) const {
  std::vector<double> readings(FrameCount() * WellCount(), kNoReading);
  if (!matrix_->meaning) return readings;
  requireChannel(*this, channel);
  for (std::size_t cell = 0; cell < readings.size(); ++cell) {
    readings[cell] = fluorescenceOf(*matrix_, cell, channel);
  }
  return readings;
}

}  // namespace vex2::lab
