#include "lab/json/SetupJson.h"

#include <cmath>

#include "lab/Text.h"
#include "lab/csv/WellsFile.h"
#include "lab/json/Json.h"
#include "lab/model/DetectorFields.h"
#include "lab/model/PlateContents.h"

namespace vex2::lab {

using nlohmann::ordered_json;

ordered_json DescribeWells(const Vex2FileManager& document) {
  const PlateContents contents = ContentsOf(document);
  ordered_json wells = ordered_json::array();
  unsigned short before = 0;
  for (const WellRow& row : contents.rows) {
    if (row.well != before) {
      wells.push_back({{"well", contents.plate.NameOf(row.well)},
                       {"sample", ToUtf8(row.sample)},
                       {"detectors", ordered_json::array()}});
    }
    before = row.well;
    if (!row.HasDetector()) continue;
    ordered_json detector = {{"name", ToUtf8(row.target)},
                             {"task", ToUtf8(row.task)},
                             {"quantity", nullptr},
                             {"reporter", ToUtf8(row.reporter)}};
    if (row.HasQuantity() && std::isfinite(row.quantity)) {
      detector["quantity"] = std::stod(DecimalText(row.quantity));
    }
    wells.back()["detectors"].push_back(std::move(detector));
  }
  return {{"rows", contents.plate.rows},
          {"columns", contents.plate.columns},
          {"wells", std::move(wells)}};
}

ordered_json DescribeDetectors(const Vex2FileManager& plate) {
  ordered_json list = ordered_json::array();
  for (const Vex2Detector& detector : DetectorsOf(plate)) {
    ordered_json entry;
    for (const DetectorField& field : DetectorFields()) {
      entry[std::string(field.key)] = ToJson(field.get(detector));
    }
    entry["defaults"] = DefaultedFields(detector);
    list.push_back(std::move(entry));
  }
  return list;
}

ordered_json DescribeDyes(const Vex2FileManager& plate) {
  ordered_json list = ordered_json::array();
  for (const std::string& dye : RequiredDyesOf(plate)) list.push_back(ToUtf8(dye));
  return list;
}

}  // namespace vex2::lab
