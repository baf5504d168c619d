#include "lab/json/OverviewJson.h"

#include "lab/json/Json.h"

namespace vex2::lab {

namespace {

using nlohmann::ordered_json;

ordered_json blocksJson(const std::vector<BlockInfo>& blocks) {
  ordered_json list = ordered_json::array();
  for (const BlockInfo& block : blocks) {
    list.push_back({{"tag", block.tag},
                    {"version", block.version},
                    {"wells", block.wells.size()},
                    {"frames", block.frameCount},
                    {"recorded", block.isRecorded},
                    {"start", OrNull(block.start)},
                    {"end", OrNull(block.end)},
                    {"startBytes", block.storedStart},
                    {"endBytes", block.storedEnd}});
  }
  return list;
}

ordered_json settingsJson(const PlateOverview& plate) {
  ordered_json settings = ordered_json::object();
  for (const auto& [name, value] : plate.settings) settings[name] = ToJson(value);
  return settings;
}

ordered_json recordsJson(const PlateOverview& plate) {
  ordered_json records = ordered_json::array();
  for (const Document::Record& record : plate.records) {
    records.push_back({{"tag", record.tag},
                       {"offset", record.offset},
                       {"length", record.length},
                       {"known", record.known}});
  }
  return records;
}

ordered_json faultsJson(const std::vector<FileFault>& faults) {
  ordered_json list = ordered_json::array();
  for (const FileFault& fault : faults) {
    list.push_back({{"offset", fault.offset}, {"what", fault.what}});
  }
  return list;
}

void addContent(ordered_json& info, const PlateOverview& plate) {
  info["kind"] = plate.kind;
  info["plate"] = {{"type", plate.plateType},
                   {"rows", plate.rows},
                   {"columns", plate.columns},
                   {"wellsInUse", plate.wellsInUse}};
  info["assay"] = plate.assay;
  info["run"] = plate.run;
  info["text"] = plate.text;
  info["status"] = plate.status;
  info["frames"] = plate.frames;
  info["start"] = OrNull(plate.start);
  info["end"] = OrNull(plate.end);
  info["blocks"] = blocksJson(plate.blocks);
  info["settings"] = settingsJson(plate);
  info["programSize"] = OrNull(plate.programSize);
  info["programText"] = OrNull(plate.programText);
  info["records"] = recordsJson(plate);
}

void addPlate(ordered_json& info, const PlateOverview& plate) {
  info["name"] = plate.name;
  info["modified"] = plate.modified;
  info["offset"] = plate.offset;
  info["size"] = plate.size;
  addContent(info, plate);
}

}  // namespace

ordered_json ToJson(const DocumentOverview& overview) {
  ordered_json info = {{"file", overview.path}};
  if (overview.plate.isEmbedded) {
    addPlate(info, overview.plate);
    return info;
  }
  info["size"] = overview.plate.size;
  info["whole"] = overview.isWhole;
  addContent(info, overview.plate);
  info["faults"] = faultsJson(overview.faults);
  if (!overview.plates) return info;
  ordered_json plates = ordered_json::array();
  for (const PlateOverview& plate : *overview.plates) addPlate(plates.emplace_back(), plate);
  info["plates"] = std::move(plates);
  return info;
}

}  // namespace vex2::lab
