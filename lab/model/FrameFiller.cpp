#include "lab/model/FrameFiller.h"

#include <algorithm>
#include <limits>

#include "lab/model/ValuesFromDocument.h"
#include "vex2/format/StoredRecords.h"

namespace vex2::lab {

FrameFiller::FrameFiller(const BlockInfo& block, const RecordedReadings& recorded,
                         std::uint64_t index)
    : block_(block),
      recorded_(recorded),
      meaning_(MeaningOf(recorded.Log())),
      frame_{.index = index, .position = {}, .wells = {}} {
  frame_.wells.reserve(block.wells.size());
}

void FrameFiller::Take(const std::uint8_t* bytes) {
  Vex2WellRecord record;
  LoadStoredRecord(bytes, record.leading, record.data);
  WellReading& well = frame_.wells.emplace_back();
  well.well = block_.wells[frame_.wells.size() - 1];
  std::copy_n(record.leading, well.leading.size(), well.leading.begin());
  std::copy_n(record.data, well.values.size(), well.values.begin());
  if (!meaning_) return;
  const auto reading = recorded_.Read(record, frame_.index);
  if (reading && frame_.position == FramePosition{}) frame_.position = PositionOf(*reading);
  well.fluorescence.resize(meaning_->ChannelCount(), std::numeric_limits<double>::quiet_NaN());
  for (std::size_t channel = 0; reading && channel < well.fluorescence.size(); ++channel) {
    if (reading->IsMissing(channel)) continue;
    well.fluorescence[channel] = meaning_->scale.Measured(reading->values[channel]);
  }
}

}  // namespace vex2::lab
