#include "lab/json/CqJson.h"

#include <cmath>

#include "lab/json/AnalysedWellJson.h"
#include "lab/json/Json.h"

namespace vex2::lab {

namespace {

using nlohmann::ordered_json;

ordered_json number(const std::optional<double>& value) {
  return value ? MeasuredJson(*value) : ordered_json(nullptr);
}

// Quantities can be of any size, so they are not rounded to a fixed number of decimals.
ordered_json quantity(const std::optional<double>& value) {
  return value && std::isfinite(*value) ? ordered_json(*value) : ordered_json(nullptr);
}

ordered_json estimate(const std::optional<QuantityEstimate>& value) {
  if (!value) return nullptr;
  return {{"quantity", quantity(value->quantity)},
          {"low", quantity(value->low)},
          {"high", quantity(value->high)}};
}

ordered_json describe(const CqResult& result) {
  ordered_json object = PlaceJson(result.curve.well);
  object["task"] = result.curve.well.task;
  object["quantity"] = quantity(result.curve.well.quantity);
  object["cq"] = number(result.cq);
  object["reason"] = result.reason ? ordered_json(NameOf(*result.reason)) : ordered_json(nullptr);
  object["note"] = result.note;
  object["threshold"] = number(result.threshold);
  object["baselineStart"] = result.baseline ? number(result.baseline->first) : nullptr;
  object["baselineEnd"] = result.baseline ? number(result.baseline->last) : nullptr;
  object["amplitude"] = number(result.amplitude);
  object["noise"] = number(result.noise);
  object["estimate"] = estimate(result.estimate);
  return object;
}

ordered_json describe(const std::optional<StandardCurve>& curve) {
  if (!curve) return nullptr;
  return {{"wells", curve->wells},
          {"slope", number(curve->slope)},
          {"intercept", number(curve->intercept)},
          {"efficiency", number(curve->efficiency)},
          {"efficiencyLow", number(curve->efficiencyLow)},
          {"efficiencyHigh", number(curve->efficiencyHigh)},
          {"rSquared", number(curve->rSquared)},
          {"rSquaredOfMeans", number(curve->rSquaredOfMeans)},
          {"residualDeviation", number(curve->residualDeviation)},
          {"limitOfDetection", quantity(curve->limitOfDetection)}};
}

ordered_json describe(const DetectorResult& detector) {
  return {{"name", detector.name},
          {"threshold", number(detector.threshold)},
          {"automatic", detector.isThresholdAutomatic},
          {"standardCurve", describe(detector.curve)}};
}

ordered_json describe(const ReplicateGroup& group, const CqAnalysis& analysis) {
  ordered_json wells = ordered_json::array();
  for (const std::size_t index : group.wells)
    wells.push_back(analysis.wells[index].curve.well.name);
  return {{"sample", group.sample},
          {"detector", group.detector},
          {"task", group.task},
          {"quantity", quantity(group.quantity)},
          {"wells", std::move(wells)},
          {"withCq", group.withCq},
          {"meanCq", number(group.meanCq)},
          {"deviation", number(group.deviation)},
          {"estimate", estimate(group.estimate)}};
}

ordered_json describe(const RelativeQuantity& relative) {
  return {{"sample", relative.sample},
          {"detector", relative.detector},
          {"meanCq", number(relative.meanCq)},
          {"controlCq", number(relative.controlCq)},
          {"deltaCq", number(relative.deltaCq)},
          {"deviation", number(relative.deviation)},
          {"deltaDeltaCq", number(relative.deltaDeltaCq)},
          {"ratio", quantity(relative.ratio)},
          {"ratioLow", quantity(relative.ratioLow)},
          {"ratioHigh", quantity(relative.ratioHigh)},
          {"correctedRatio", quantity(relative.correctedRatio)}};
}

ordered_json describe(const QualityFinding& finding) {
  ordered_json object = {{"problem", NameOf(finding.problem)}};
  if (!finding.plate.empty()) object["plate"] = finding.plate;
  object["wells"] = finding.wells;
  object["detector"] = finding.detector;
  object["text"] = finding.text;
  return object;
}

template <typename Elements>
ordered_json listOf(const Elements& elements) {
  ordered_json list = ordered_json::array();
  for (const auto& each : elements) list.push_back(describe(each));
  return list;
}

}  // namespace

ordered_json DescribeCq(const CqAnalysis& analysis, const std::string& path) {
  ordered_json replicates = ordered_json::array();
  for (const ReplicateGroup& group : analysis.replicates) {
    replicates.push_back(describe(group, analysis));
  }
  return {{"file", path},
          {"method", NameOf(analysis.method)},
          {"wells", listOf(analysis.wells)},
          {"detectors", listOf(analysis.detectors)},
          {"replicates", std::move(replicates)},
          {"relative", listOf(analysis.relative)},
          {"findings", listOf(analysis.findings)}};
}

}  // namespace vex2::lab
