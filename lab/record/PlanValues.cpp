#include "lab/record/PlanValues.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "lab/Error.h"
#include "lab/Text.h"
#include "lab/model/AssayTypes.h"
#include "lab/model/RunLog.h"
#include "lab/model/RunReading.h"
#include "lab/model/ValuesToDocument.h"

namespace vex2::lab {

namespace {

[[noreturn]] void refuse(const std::string& why) {
  throw Error(ErrorCode::kInvalidValue, why);
}

std::vector<unsigned short> wellsToRead(const RecordingPlan& plan, const PlateLayout& plate) {
  std::vector<unsigned short> wells = plan.wells;
  if (wells.empty()) {
    for (const Well& well : plan.plate.wells) wells.push_back(well.number);
    std::sort(wells.begin(), wells.end());
  }
  if (wells.empty()) refuse("the plan has no wells");
  for (std::size_t i = 0; i < wells.size(); ++i) {
    if (wells[i] < 1 || wells[i] > plate.WellCount()) {
      refuse(fmt::format("the plate has no well {}", wells[i]));
    }
    if (i > 0 && wells[i] <= wells[i - 1]) refuse("the wells of the plan are not ascending");
  }
  return wells;
}

std::vector<std::string> storedChannels(const RecordingPlan& plan) {
  std::vector<std::string> channels;
  for (const std::string& channel : plan.channels) {
    const std::string name = StoredText(channel, "channel");
    const bool isTwice = std::find(channels.begin(), channels.end(), name) != channels.end();
    // The log stores the names in one line, separated by commas.
    if (name.empty() || isTwice || name.find_first_of(",\n\r") != std::string::npos) {
      refuse(
          fmt::format("the channel name '{}' must be unique and not empty, and must not contain a "
                      "comma or line end",
                      channel));
    }
    channels.push_back(name);
  }
  if (channels.size() > kMostChannels) {
    refuse(fmt::format("a well has at most {} channels", kMostChannels));
  }
  return channels;
}

std::optional<RunStart> startOf(const RecordingPlan& plan) {
  if (!plan.started) return std::nullopt;
  const auto start = RunStart::Parse(*plan.started);
  if (start) return start;
  refuse(fmt::format(
      "the start '{}' is not a date and time with a time zone, like 2026-11-22T08:00:00Z",
      *plan.started));
}

std::string assayOf(const RecordingPlan& plan) {
  if (plan.assay.empty()) return {};
  const auto code = PlateAssayCode(plan.assay);
  if (code) return *code;
  refuse(fmt::format("the assay '{}' is none of {}", plan.assay, PlateAssayList()));
}

std::vector<SettingValue> settingsOf(const RecordingPlan& plan) {
  for (const SettingValue& setting : plan.settings) {
    // The recorder writes the log and compares it when a run is resumed.
    if (setting.name == "log") refuse("the setting log cannot be planned: the recorder writes it");
  }
  return plan.settings;
}

// Calls `take` with each well of the frame and its index in the plan. Each of the plan's wells must
// be in the frame exactly once.
template <typename Frame, typename Take>
void takeByWell(const RunPlan& plan, const Frame& frame, const std::string& name,
                const Take& take) {
  if (frame.size() != plan.wells.size()) {
    refuse(fmt::format("{} has readings of {}, but the run has {}", name,
                       Counted(frame.size(), "well"), Counted(plan.wells.size(), "well")));
  }
  std::vector<bool> seen(plan.wells.size());
  for (const auto& one : frame) {
    const auto found = std::lower_bound(plan.wells.begin(), plan.wells.end(), one.well);
    if (found == plan.wells.end() || *found != one.well) {
      refuse(
          fmt::format("{} has a reading of well {}, which the plan does not have", name, one.well));
    }
    const auto place = static_cast<std::size_t>(found - plan.wells.begin());
    if (seen[place]) {
      refuse(fmt::format("{} has two readings of well {}", name, plan.plate.NameOf(one.well)));
    }
    seen[place] = true;
    take(place, one);
  }
}

template <typename Stored>
Stored scaled(double number, double parts, const std::string& what) {
  const double stored = std::round(number * parts);
  if (!(stored >= 0) || stored > std::numeric_limits<Stored>::max()) {
    refuse(fmt::format("{} {} does not fit into a document", what, PlainText(number)));
  }
  return static_cast<Stored>(stored);
}

void encodeValues(const RunPlan& plan, const MeasuredWell& from, const std::string& where,
                  RunReading& to) {
  if (from.values.size() != ChannelCount(plan)) {
    refuse(fmt::format("{} has {}, but the run has {}", where,
                       Counted(from.values.size(), "reading"),
                       Counted(ChannelCount(plan), "channel")));
  }
  for (std::size_t channel = 0; channel < from.values.size(); ++channel) {
    const auto& value = from.values[channel];
    if (!value) {
      to.missing = static_cast<std::uint16_t>(to.missing | 1U << channel);
      continue;
    }
    const auto stored = std::isfinite(*value) ? plan.scale.Store(*value) : std::nullopt;
    if (!stored) {
      refuse(fmt::format(
          "{}: the reading {} does not fit in 16 bits with the scale {} and the offset {}", where,
          PlainText(*value), plan.scale.ScaleText(), plan.scale.OffsetText()));
    }
    to.values[channel] = *stored;
  }
}

}  // namespace

RunPlan InternalPlan(const RecordingPlan& plan) {
  RunPlan result;
  result.isLive = true;
  result.liveFrames = plan.frameCount;
  result.contents = StoredContents(plan.plate, plan.detectors);
  result.plate = result.contents.plate;
  result.wells = wellsToRead(plan, result.plate);
  result.calibration = plan.calibration;
  result.channels = storedChannels(plan);
  result.started = startOf(plan);
  result.assay = assayOf(plan);
  result.comment = StoredText(plan.comment, "comment");
  result.statesReadings = plan.scale.has_value();
  if (plan.scale) {
    result.scale = *plan.scale;
    result.origin = std::string(kMeasuredSource) + "\n";
  }
  for (const Detector& detector : plan.detectors) {
    result.detectors.push_back(StoredDetector(detector));
  }
  for (const std::string& dye : plan.requiredDyes) {
    result.requiredDyes.push_back(StoredText(dye, "required dye"));
  }
  result.settings = settingsOf(plan);
  result.program = plan.program;
  return result;
}

std::vector<RunReading> EncodedFrame(const RunPlan& plan, const MeasuredFrame& frame,
                                     const std::string& name) {
  std::vector<RunReading> readings(plan.wells.size());
  takeByWell(plan, frame.wells, name, [&](std::size_t place, const MeasuredWell& from) {
    const std::string where = fmt::format("{}, well {}", name, plan.plate.NameOf(from.well));
    RunReading& to = readings[place];
    to.melting = frame.stage == Stage::kMelting;
    to.cycle = frame.cycle;
    to.time = scaled<std::uint32_t>(from.time, kTimeSteps, where + ": the time");
    to.temperature =
        scaled<std::uint16_t>(from.temperature, kTemperatureSteps, where + ": the temperature");
    encodeValues(plan, from, where, to);
  });
  return readings;
}

std::vector<Vex2WellRecord> OrderedRecords(const RunPlan& plan, std::span<const RawRecord> frame,
                                           const std::string& name) {
  std::vector<Vex2WellRecord> records(plan.wells.size());
  takeByWell(plan, frame, name, [&](std::size_t place, const RawRecord& from) {
    // The manager would not count such a record as filled, and would not save the frame.
    if (from.leading[0] == 0) {
      refuse(fmt::format(
          "{} is incomplete: the record of well {} is not filled (its first value is 0)", name,
          plan.plate.NameOf(from.well)));
    }
    std::copy(from.leading.begin(), from.leading.end(), records[place].leading);
    std::copy(from.readings.begin(), from.readings.end(), records[place].data);
  });
  return records;
}

}  // namespace vex2::lab
