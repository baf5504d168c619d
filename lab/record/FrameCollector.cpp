#include "lab/record/FrameCollector.h"

#include <fmt/core.h>

#include <algorithm>

#include "lab/Error.h"
#include "lab/Text.h"

namespace vex2::lab {

const ReadingRow* CollectedFrame::Put(std::size_t cell, const ReadingRow& row) {
  if (cells_[cell].number != 0) return &cells_[cell];
  cells_[cell] = row;
  ++filled_;
  return nullptr;
}

std::size_t CollectedFrame::FirstMissing() const {
  const auto missing = std::find_if(cells_.begin(), cells_.end(),
                                    [](const ReadingRow& cell) { return cell.number == 0; });
  return static_cast<std::size_t>(missing - cells_.begin());
}

FrameCollector::FrameCollector(const RunPlan& plan, std::string file)
    : plan_(plan), file_(std::move(file)) {}

CollectedFrame& FrameCollector::Add(const ReadingRow& row) {
  const FrameKey key{row.melting, row.cycle};
  const std::size_t channels = ChannelCount(plan_);
  const auto well = std::lower_bound(plan_.wells.begin(), plan_.wells.end(), row.well);
  const std::size_t firstCell = static_cast<std::size_t>(well - plan_.wells.begin()) * channels;
  CollectedFrame& frame =
      frames_.try_emplace(key, key, plan_.wells.size() * channels).first->second;
  checkShared(frame, firstCell, row);
  if (const ReadingRow* first = frame.Put(firstCell + row.channel, row)) {
    refuse(row, fmt::format("{} has a second reading in {}, the first is in row {}", nameOf(row),
                            FrameName(row.melting, row.cycle), first->number));
  }
  return frame;
}

// Throws an error if the channels of the well differ in time or temperature, since a record stores
// only one of each.
void FrameCollector::checkShared(const CollectedFrame& frame, std::size_t firstCell,
                                 const ReadingRow& row) const {
  for (std::size_t channel = 0; channel < ChannelCount(plan_); ++channel) {
    const ReadingRow& other = frame.Cells()[firstCell + channel];
    if (other.number == 0 || channel == row.channel) continue;
    if (other.seconds == row.seconds && other.temperature == row.temperature) continue;
    refuse(row, fmt::format("the channels of well {} in {} must have one time and temperature; "
                            "row {} has others",
                            plan_.plate.NameOf(row.well), FrameName(row.melting, row.cycle),
                            other.number));
  }
}

std::string FrameCollector::MissingText(const CollectedFrame& frame) const {
  ReadingRow missing;
  const std::size_t cell = frame.FirstMissing();
  missing.well = plan_.wells[cell / ChannelCount(plan_)];
  missing.channel = cell % ChannelCount(plan_);
  return fmt::format("{} has no reading in {}", nameOf(missing),
                     FrameName(frame.Key().first, frame.Key().second));
}

void FrameCollector::RefuseIncomplete(const CollectedFrame& frame) const {
  throw Error(
      ErrorCode::kDocument, file_,
      fmt::format("{}; a row with NA stands for a reading that is missing", MissingText(frame)));
}

std::string FrameCollector::nameOf(const ReadingRow& row) const {
  const std::string well = plan_.plate.NameOf(row.well);
  if (plan_.channels.empty()) return fmt::format("well {}", well);
  return fmt::format("channel {} of well {}", ToUtf8(plan_.channels[row.channel]), well);
}

void FrameCollector::refuse(const ReadingRow& row, const std::string& why) const {
  throw Error(ErrorCode::kDocument, file_, fmt::format("row {}: {}", row.number, why));
}

}  // namespace vex2::lab
