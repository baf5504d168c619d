#include <array>
#include <cmath>
#include <cstdio>

#include "lab/json/Json.h"
#include "lab/picture/ReportParts.h"

namespace vex2::lab {

namespace {

using nlohmann::ordered_json;

// JSON has no infinity and no NaN, so such numbers of a document are shown as texts.
ordered_json floatJson(float number) {
  if (std::isfinite(number)) return ToJson(Value(number));
  return std::isnan(number) ? "NaN" : number > 0 ? "infinity" : "-infinity";
}

ordered_json settingJson(const Value& value) {
  if (const auto* number = std::get_if<float>(&value)) return floatJson(*number);
  return ToJson(value);
}

ordered_json wellsJson(const Plate& plate) {
  ordered_json wells = ordered_json::array();
  for (const Well& well : plate.wells) {
    ordered_json object = {{"number", well.number}, {"name", well.name}};
    if (!well.sample.empty()) object["sample"] = well.sample;
    ordered_json targets = ordered_json::array();
    for (const Target& target : well.targets) {
      ordered_json entry = {{"detector", target.detector}, {"task", target.task}};
      if (target.quantity) entry["quantity"] = floatJson(*target.quantity);
      if (!target.reporter.empty()) entry["reporter"] = target.reporter;
      targets.push_back(std::move(entry));
    }
    if (!targets.empty()) object["targets"] = std::move(targets);
    wells.push_back(std::move(object));
  }
  return wells;
}

std::string colourText(const std::array<std::uint8_t, 3>& colour) {
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "#%02x%02x%02x", colour[0], colour[1], colour[2]);
  return text.data();
}

ordered_json detectorsJson(const std::vector<Detector>& detectors) {
  ordered_json list = ordered_json::array();
  for (const Detector& detector : detectors) {
    list.push_back({{"name", detector.name},
                    {"reporter", detector.reporterDye},
                    {"quencher", detector.quencherDye},
                    {"description", detector.description},
                    {"comment", detector.comment},
                    {"owner", detector.owner},
                    {"location", detector.location},
                    {"colour", colourText(detector.color)},
                    {"baselineStart", detector.baselineStart},
                    {"baselineEnd", detector.baselineEnd},
                    {"threshold", floatJson(detector.threshold)},
                    {"autoBaseline", detector.autoBaseline},
                    {"autoThreshold", detector.autoThreshold}});
  }
  return list;
}

ordered_json spectraJson(const std::optional<CalibrationPart>& part) {
  ordered_json list = ordered_json::array();
  if (!part) return list;
  for (const CalibrationEntry& entry : part->entries) {
    ordered_json values = ordered_json::array();
    for (const std::uint32_t value : entry.values) values.push_back(floatJson(NumberOf(value)));
    list.push_back({{"name", entry.name}, {"values", std::move(values)}});
  }
  return list;
}

ordered_json blocksJson(const std::vector<BlockInfo>& blocks) {
  ordered_json list = ordered_json::array();
  for (const BlockInfo& block : blocks) {
    ordered_json object = {{"tag", block.tag},
                           {"frames", block.frameCount},
                           {"wells", block.wells.size()},
                           {"blockVersion", block.version},
                           {"recorded", block.isRecorded}};
    if (block.start) object["start"] = *block.start;
    if (block.end) object["end"] = *block.end;
    list.push_back(std::move(object));
  }
  return list;
}

}  // namespace

ordered_json PlateJson(const RunReader& plate) {
  ordered_json settings = ordered_json::array();
  for (const SettingValue& setting : plate.Settings()) {
    settings.push_back({{"name", setting.name}, {"value", settingJson(setting.value)}});
  }
  ordered_json object = {{"rows", plate.Plate().rows},
                         {"columns", plate.Plate().columns},
                         {"type", plate.Plate().type},
                         {"kind", plate.KindCode()},
                         {"assay", plate.AssayCode()},
                         {"status", plate.StatusCode()},
                         {"wells", wellsJson(plate.Plate())},
                         {"detectors", detectorsJson(plate.Detectors())},
                         {"dyes", plate.RequiredDyes()},
                         {"settings", std::move(settings)},
                         {"pureDyes", spectraJson(plate.Calibration().pureDyes)},
                         {"background", spectraJson(plate.Calibration().background)},
                         {"blocks", blocksJson(plate.Blocks())}};
  if (plate.Program()) {
    object["program"] = {{"bytes", plate.Program()->bytes.size()}};
    if (plate.Program()->text) object["program"]["text"] = *plate.Program()->text;
  }
  return object;
}

}  // namespace vex2::lab
