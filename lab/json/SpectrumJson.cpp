#include "lab/json/SpectrumJson.h"

#include "lab/json/Json.h"

namespace vex2::lab {

using nlohmann::ordered_json;

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
