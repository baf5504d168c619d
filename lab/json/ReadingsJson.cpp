#include <algorithm>
#include <iterator>

#include "lab/Text.h"
#include "lab/csv/ReadingFields.h"
#include "lab/json/DocumentJson.h"
#include "lab/json/Json.h"
#include "lab/model/StoredCalibration.h"
#include "vex2/format/DataBlockHead.h"

namespace vex2::lab {

namespace {

using nlohmann::ordered_json;

ordered_json describePart(const std::optional<CalibrationPart>& part, bool isDye) {
  if (!part) return nullptr;
  ordered_json info = {{"code", ToHex(part->head.code)},     {"setting", part->head.setting},
                       {"option", part->head.option},        {"value", part->head.value},
                       {"extra1", ToHex(part->head.extra1)}, {"extra2", ToHex(part->head.extra2)},
                       {"spectra", ordered_json::array()}};
  for (const CalibrationEntry& entry : part->entries) {
    ordered_json spectrum = {{"name", entry.name},
                             {"dyeIndex", entry.dyeIndex},
                             {"key1", entry.key1},
                             {"key2", entry.key2}};
    if (isDye) {
      spectrum["bytes"] = entry.bytes;
      spectrum["params"] = entry.params;
    } else {
      spectrum["limit"] = entry.limit;
    }
    spectrum["values"] = NumbersOf(entry);
    info["spectra"].push_back(std::move(spectrum));
  }
  return info;
}

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

}  // namespace

ordered_json ToJson(const Calibration& calibration) {
  return {{"pureDyes", describePart(calibration.pureDyes, true)},
          {"background", describePart(calibration.background, false)}};
}

ordered_json ToJson(const std::vector<StudyPlate>& plates) {
  ordered_json list = ordered_json::array();
  for (const StudyPlate& plate : plates) {
    list.push_back({{"name", plate.name},
                    {"modified", plate.modified},
                    {"wells", plate.wells},
                    {"frames", plate.frames},
                    {"status", plate.status},
                    {"offset", plate.offset},
                    {"size", plate.size}});
  }
  return list;
}

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

ordered_json DescribeSpectrum(const WellSpectrum& spectrum, const std::string& path,
                              const std::string& well, std::int64_t frame) {
  ordered_json object = {{"file", path}};
  if (spectrum.isEmbedded) object["plate"] = spectrum.plate;
  object["well"] = well;
  object["number"] = spectrum.well;
  object["frame"] = frame;
  object["frames"] = spectrum.frameCount;
  object["wellValue"] = spectrum.record.leading[0];
  object["readings"] = spectrum.record.data;
  if (!spectrum.rates.empty()) object["rates"] = spectrum.rates;
  return object;
}

}  // namespace vex2::lab
