#include "lab/json/CalibrationJson.h"

#include <optional>

#include "lab/Text.h"
#include "lab/json/Json.h"
#include "lab/model/StoredCalibration.h"

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

}  // namespace

ordered_json ToJson(const Calibration& calibration) {
  return {{"pureDyes", describePart(calibration.pureDyes, true)},
          {"background", describePart(calibration.background, false)}};
}

}  // namespace vex2::lab
