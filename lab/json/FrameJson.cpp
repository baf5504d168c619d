#include <cmath>

#include "lab/json/DocumentJson.h"
#include "lab/json/Json.h"
#include "lab/model/PlateLayout.h"
#include "lab/record/RunFollower.h"

namespace vex2::lab {

namespace {

using nlohmann::ordered_json;

ordered_json numbersOf(const std::vector<double>& readings) {
  ordered_json numbers = ordered_json::array();
  for (const double reading : readings) {
    numbers.push_back(std::isnan(reading) ? ordered_json(nullptr) : ordered_json(reading));
  }
  return numbers;
}

}  // namespace

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
