#include <algorithm>
#include <bit>

#include "lab/analysis/Cq.h"
#include "lab/analysis/Melt.h"
#include "lab/json/Json.h"
#include "lab/picture/Base64.h"
#include "lab/picture/ReportParts.h"

namespace vex2::lab {

namespace {

using nlohmann::ordered_json;

// Sets the key only if there is a value: a page of 384 wells does not need a thousand nulls.
template <typename Content>
void setIfAny(ordered_json& object, const char* key, const std::optional<Content>& content) {
  if (content) object[key] = *content;
}

ordered_json wellJson(const AnalysedWell& well) {
  ordered_json object = ordered_json::object();
  if (!well.plate.empty()) object["plate"] = well.plate;
  object["well"] = well.number;
  object["detector"] = well.detector;
  return object;
}

ordered_json resultJson(const CqResult& result) {
  ordered_json object = wellJson(result.curve.well);
  setIfAny(object, "cq", result.cq);
  if (result.reason) object["reason"] = NameOf(*result.reason);
  if (!result.note.empty()) object["note"] = result.note;
  setIfAny(object, "sdm", result.secondDerivativeCq);
  if (result.baseline) {
    object["baseline"] = {result.baseline->first, result.baseline->last};
    object["line"] = {result.baselineIntercept, result.baselineSlope};
    object["amplitude"] = result.amplitude;
  }
  if (result.estimate) {
    object["estimate"] = {{"quantity", result.estimate->quantity},
                          {"low", result.estimate->low},
                          {"high", result.estimate->high}};
  }
  return object;
}

ordered_json detectorJson(const DetectorResult& detector) {
  ordered_json object = {{"name", detector.name}, {"automatic", detector.isThresholdAutomatic}};
  setIfAny(object, "threshold", detector.threshold);
  if (!detector.curve) return object;
  ordered_json curve = {{"slope", detector.curve->slope},
                        {"intercept", detector.curve->intercept},
                        {"rSquared", detector.curve->rSquared},
                        {"rSquaredOfMeans", detector.curve->rSquaredOfMeans},
                        {"wells", detector.curve->wells}};
  setIfAny(curve, "efficiency", detector.curve->efficiency);
  setIfAny(curve, "efficiencyLow", detector.curve->efficiencyLow);
  setIfAny(curve, "efficiencyHigh", detector.curve->efficiencyHigh);
  setIfAny(curve, "limitOfDetection", detector.curve->limitOfDetection);
  object["curve"] = std::move(curve);
  return object;
}

ordered_json relativeJson(const RelativeQuantity& relative) {
  ordered_json object = {
      {"sample", relative.sample}, {"detector", relative.detector}, {"deltaCq", relative.deltaCq}};
  setIfAny(object, "deviation", relative.deviation);
  setIfAny(object, "deltaDeltaCq", relative.deltaDeltaCq);
  setIfAny(object, "ratio", relative.ratio);
  setIfAny(object, "ratioLow", relative.ratioLow);
  setIfAny(object, "ratioHigh", relative.ratioHigh);
  setIfAny(object, "correctedRatio", relative.correctedRatio);
  return object;
}

template <typename Elements, typename Describe>
ordered_json listOf(const Elements& elements, const Describe& describe) {
  ordered_json list = ordered_json::array();
  for (const auto& each : elements) list.push_back(describe(each));
  return list;
}

ordered_json qualityJson(const QualityFinding& finding) {
  return {{"problem", NameOf(finding.problem)},
          {"plate", finding.plate},
          {"wells", finding.wells},
          {"detector", finding.detector},
          {"text", finding.text}};
}

// The numbers as 32-bit floats in Base64, the least significant byte first.
std::string packed(const std::vector<double>& numbers) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(4 * numbers.size());
  for (const double number : numbers) {
    const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(number));
    for (unsigned shift = 0; shift < 32; shift += 8) {
      bytes.push_back(static_cast<std::uint8_t>(bits >> shift & 0xFFU));
    }
  }
  return Base64(bytes);
}

// The melting curves. The temperatures are stored only once for consecutive curves that have the
// same.
class MeltList {
 public:
  void Add(const MeltCurve& curve) {
    ordered_json object = wellJson(curve.well);
    object["axis"] = axisOf(curve.temperatures);
    object["derivative"] = packed(curve.derivative);
    object["peaks"] = listOf(curve.peaks, [](const MeltPeak& peak) -> ordered_json {
      return {{"temperature", peak.temperature}, {"height", peak.height}, {"width", peak.width}};
    });
    list_.push_back(std::move(object));
  }
  void PutInto(ordered_json& object) {
    object["meltAxes"] = std::move(axes_);
    object["melting"] = std::move(list_);
  }

 private:
  std::size_t axisOf(const std::vector<double>& temperatures) {
    if (axes_.empty() || temperatures != last_) {
      axes_.push_back(temperatures);
      last_ = temperatures;
    }
    return axes_.size() - 1;
  }

  std::vector<double> last_;
  ordered_json axes_ = ordered_json::array();
  ordered_json list_ = ordered_json::array();
};

bool hasMelting(const RunReader& run) {
  const auto isMelting = [](const FramePosition& position) {
    return position.stage == Stage::kMelting;
  };
  if (!run.IsStudy()) {
    const auto axis = run.Axis();
    return std::any_of(axis.begin(), axis.end(), isMelting);
  }
  const auto names = run.PlateNames();
  return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
    const auto axis = run.Plate(name).Axis();
    return std::any_of(axis.begin(), axis.end(), isMelting);
  });
}

void addCqs(const RunReader& run, ordered_json& object) {
  const CqAnalysis analysis = AnalyseCq(run);
  object["results"] = listOf(analysis.wells, resultJson);
  object["detectorResults"] = listOf(analysis.detectors, detectorJson);
  object["relative"] = listOf(analysis.relative, relativeJson);
  object["quality"] = listOf(analysis.findings, qualityJson);
}

void addMelting(const RunReader& run, ordered_json& object) {
  if (!hasMelting(run)) return;
  MeltList list;
  for (const MeltCurve& curve : AnalyseMelt(run)) list.Add(curve);
  list.PutInto(object);
}

}  // namespace

ordered_json AnalysisJson(const RunReader& run) {
  ordered_json object = ordered_json::object();
  // If a run has no readings, or the meaning of its readings is not known, it has no results, and
  // the page gives the reason.
  for (const auto& add : {addCqs, addMelting}) {
    try {
      add(run, object);
    } catch (const Error& error) {
      if (error.Class() != ErrorClass::kDocument) throw;
      if (!object.contains("analysisError")) object["analysisError"] = error.Message();
    }
  }
  return object;
}

}  // namespace vex2::lab
