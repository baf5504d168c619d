#include "lab/json/AnalysedWellJson.h"

#include <cmath>

#include "lab/analysis/NumberText.h"
#include "lab/json/Json.h"

namespace vex2::lab {

using nlohmann::ordered_json;

ordered_json MeasuredJson(double value) {
  return std::isfinite(value) ? NumberJson(MeasuredText(value)) : ordered_json(nullptr);
}

ordered_json PlaceJson(const AnalysedWell& well) {
  ordered_json object = ordered_json::object();
  if (!well.plate.empty()) object["plate"] = well.plate;
  object["well"] = well.name;
  object["sample"] = well.sample;
  object["detector"] = well.detector;
  return object;
}

}  // namespace vex2::lab
