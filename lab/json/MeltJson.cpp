#include "lab/json/MeltJson.h"

#include "lab/json/AnalysedWellJson.h"
#include "lab/json/Json.h"

namespace vex2::lab {

using nlohmann::ordered_json;

ordered_json DescribeMelt(const std::vector<MeltCurve>& curves, const std::string& path) {
  ordered_json wells = ordered_json::array();
  for (const MeltCurve& curve : curves) {
    ordered_json object = PlaceJson(curve.well);
    ordered_json peaks = ordered_json::array();
    for (const MeltPeak& peak : curve.peaks) {
      peaks.push_back({{"temperature_c", MeasuredJson(peak.temperature)},
                       {"height", MeasuredJson(peak.height)},
                       {"width", MeasuredJson(peak.width)}});
    }
    object["temperatures"] = curve.temperatures.size();
    object["peaks"] = std::move(peaks);
    wells.push_back(std::move(object));
  }
  return {{"file", path}, {"wells", std::move(wells)}};
}

}  // namespace vex2::lab
