#include <algorithm>
#include <vector>

#include "lab/json/Json.h"
#include "lab/picture/Base64.h"
#include "lab/picture/ReportParts.h"

namespace vex2::lab {

namespace {

using nlohmann::ordered_json;

// The largest number of packed readings of a plate, as a browser cannot handle a larger page. These
// 16 million readings are 40 plates of 384 wells with 1,000 frames each.
constexpr std::size_t kMostReadings = std::size_t{1} << 24U;
// Nor is a page of more curves, however short: each takes 50 bytes beside its readings.
constexpr std::size_t kMostCurves = std::size_t{1} << 16U;

// The number of values of a well that are in use: that of the channels. If the meaning of the
// values is not known: all up to the last one that is not 0 in any well.
std::size_t valuesInUse(const Readings& readings) {
  if (readings.Meaning()) return readings.ChannelCount();
  std::size_t used = 1;
  const auto values = readings.Values();
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i] != 0) used = std::max(used, i % kReadingValues + 1);
  }
  return used;
}

ordered_json channelsOf(const Readings& readings, std::size_t values) {
  ordered_json names = ordered_json::array();
  const bool hasNames = readings.Meaning() && !readings.Meaning()->channels.empty();
  for (std::size_t i = 0; i < values; ++i) {
    if (hasNames) {
      names.push_back(readings.Meaning()->channels[i]);
    } else {
      names.push_back(values == 1 ? "" : "value " + std::to_string(i + 1));
    }
  }
  return names;
}

template <typename Member>
ordered_json column(const std::vector<FramePosition>& axis, const Member& member) {
  ordered_json values = ordered_json::array();
  bool hasAny = false;
  for (const FramePosition& position : axis) {
    const auto& value = position.*member;
    hasAny |= value.has_value();
    values.push_back(value ? ordered_json(*value) : ordered_json());
  }
  return hasAny ? values : ordered_json();
}

ordered_json curve(const Readings& readings, std::size_t well, std::size_t value) {
  const std::size_t frames = readings.FrameCount();
  std::vector<std::uint16_t> stored(frames);
  ordered_json missing = ordered_json::array();
  for (std::size_t frame = 0; frame < frames; ++frame) {
    stored[frame] = readings.At(frame, well, value);
    if (readings.Meaning() && !readings.Fluorescence(frame, well, value)) missing.push_back(frame);
  }
  ordered_json packed = {
      {"well", readings.Wells()[well]}, {"channel", value}, {"values", Base64(stored)}};
  if (!missing.empty()) packed["missing"] = std::move(missing);
  return packed;
}

std::string stagesOf(const std::vector<FramePosition>& axis) {
  std::string stages;
  for (const FramePosition& position : axis) {
    if (!position.stage) return "";
    stages += *position.stage == Stage::kMelting ? 'm' : 'a';
  }
  return stages;
}

}  // namespace

ordered_json PackedReadingsJson(const RunReader& plate) {
  const Readings readings = plate.Readings();
  const std::size_t values = valuesInUse(readings);
  const std::size_t perWell = std::max<std::size_t>(readings.FrameCount() * values, 1);
  const std::size_t wells =
      std::min({readings.WellCount(), kMostReadings / perWell, kMostCurves / values});
  ordered_json object = {{"known", readings.Meaning().has_value()},
                         {"frames", readings.FrameCount()},
                         {"channels", channelsOf(readings, values)},
                         {"step", 1.0},
                         {"offset", 0.0}};
  if (readings.Meaning()) {
    object["step"] = readings.Meaning()->scale.Step();
    object["offset"] = readings.Meaning()->scale.Offset().Value();
  }
  object["stages"] = stagesOf(readings.Axis());
  object["cycles"] = column(readings.Axis(), &FramePosition::cycle);
  object["temperatures"] = column(readings.Axis(), &FramePosition::temperature);
  object["times"] = column(readings.Axis(), &FramePosition::time);
  object["wellsLeftOut"] = readings.WellCount() - wells;
  ordered_json curves = ordered_json::array();
  if (readings.FrameCount() > 0) {
    for (std::size_t well = 0; well < wells; ++well) {
      for (std::size_t value = 0; value < values; ++value) {
        curves.push_back(curve(readings, well, value));
      }
    }
  }
  object["curves"] = std::move(curves);
  return object;
}

}  // namespace vex2::lab
