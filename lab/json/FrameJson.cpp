#include "lab/json/FrameJson.h"

#include <cmath>

#include "lab/csv/ReadingFields.h"
#include "lab/json/Json.h"
#include "lab/model/FrameView.h"
#include "lab/model/PlateLayout.h"
#include "lab/record/RunFollower.h"
#include "vex2/format/DataBlockHead.h"

namespace vex2::lab {

namespace {

using nlohmann::ordered_json;

// All fields except the stage are numbers, or are missing.
ordered_json readingInfo(const FrameView& view, std::size_t position) {
  const auto reading = view.ReadingOf(position);
  if (!reading) return nullptr;
  const auto fields = ReadingFields(*reading, *view.recorded.Log());
  const auto names = ReadingNames(*view.recorded.Log());
  ordered_json info = {{names[0], fields[0]}};
  for (std::size_t i = 1; i < fields.size(); ++i) info[names[i]] = NumberJson(fields[i]);
  return info;
}

ordered_json numbersOf(const std::vector<double>& readings) {
  ordered_json numbers = ordered_json::array();
  for (const double reading : readings) {
    numbers.push_back(std::isnan(reading) ? ordered_json(nullptr) : ordered_json(reading));
  }
  return numbers;
}

}  // namespace

ordered_json DescribeFrame(const FrameView& view, const std::string& path,
                           const std::string& block) {
  ordered_json wells = ordered_json::array();
  for (std::size_t i = 0; i < view.wells.size(); ++i) {
    const Vex2WellRecord& record = view.frame.records[i];
    wells.push_back(
        {{"well", view.NameOf(i)},
         {"number", view.wells[i]},
         {"leading", record.leading},
         {"data", std::vector<std::uint16_t>(record.data, record.data + kStoredDataValues)},
         {"reading", readingInfo(view, i)}});
  }
  ordered_json frame = {{"file", path}};
  if (view.isEmbedded) frame["plate"] = view.plate;
  frame["block"] = block;
  frame["frame"] = view.index;
  frame["frames"] = view.frameCount;
  frame["recorded"] = view.recorded.Log().has_value();
  frame["wells"] = std::move(wells);
  return frame;
}

ordered_json DescribeFollowed(const Frame& frame, const RunFollower& follower) {
  const FramePosition& position = frame.position;
  const std::uint32_t columns = follower.Run() ? follower.Run()->Plate().columns : 0;
  ordered_json names = ordered_json::array();
  ordered_json fluorescence = ordered_json::array();
  ordered_json values = ordered_json::array();
  bool isKnown = false;
  for (const WellReading& well : frame.wells) {
    names.push_back(WellName(well.well, columns));
    fluorescence.push_back(numbersOf(well.fluorescence));
    values.push_back(well.values);
    isKnown = isKnown || !well.fluorescence.empty();
  }
  ordered_json stage = nullptr;
  if (position.stage) stage = *position.stage == Stage::kMelting ? "melt" : "amplification";
  ordered_json info = {{"file", follower.Path().string()},
                       {"frame", frame.index},
                       {"frames", OrNull(follower.PlannedFrames())},
                       {"stage", std::move(stage)},
                       {"cycle", OrNull(position.cycle)},
                       {"time_s", OrNull(position.time)},
                       {"temperature_c", OrNull(position.temperature)},
                       {"channels", follower.Channels()},
                       {"wells", std::move(names)}};
  if (isKnown) {
    info["fluorescence"] = std::move(fluorescence);
  } else {
    info["values"] = std::move(values);
  }
  return info;
}

}  // namespace vex2::lab
