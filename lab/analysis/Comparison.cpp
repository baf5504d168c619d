#include "lab/analysis/Comparison.h"

#include <cmath>
#include <map>
#include <tuple>
#include <utility>

#include "lab/analysis/Statistics.h"
#include "lab/analysis/Tasks.h"

namespace vex2::lab {

namespace {

const DetectorResult* find(const std::vector<DetectorResult>& detectors, const std::string& name) {
  for (const DetectorResult& detector : detectors) {
    if (detector.name == name) return &detector;
  }
  return nullptr;
}

void summarise(ReplicateGroup& group, const std::vector<CqResult>& wells,
               const DetectorResult* detector) {
  std::vector<double> cqs;
  for (const std::size_t index : group.wells) {
    if (wells[index].cq) cqs.push_back(*wells[index].cq);
  }
  group.withCq = cqs.size();
  if (cqs.empty()) return;
  group.meanCq = Mean(cqs);
  group.deviation = Deviation(cqs);
  const bool isEstimated = HasUnknownQuantity(wells[group.wells.front()].curve.well);
  if (isEstimated && detector != nullptr && detector->curve) {
    group.estimate = EstimateQuantity(*detector->curve, *group.meanCq, group.withCq);
  }
}

/// The quantification cycles by sample and detector.
using CqsBySample = std::map<std::pair<std::string, std::string>, std::vector<double>>;

struct SampleOrder {
  CqsBySample cqs;
  std::vector<std::pair<std::string, std::string>> order;  // pairs of sample and detector
};

SampleOrder collectSamples(const std::vector<CqResult>& wells) {
  SampleOrder result;
  for (const CqResult& each : wells) {
    if (!each.cq || each.curve.well.sample.empty() || IsControl(each.curve.well)) continue;
    const std::pair key(each.curve.well.sample, each.curve.well.detector);
    auto& cqs = result.cqs[key];
    if (cqs.empty()) result.order.push_back(key);
    cqs.push_back(*each.cq);
  }
  return result;
}

std::optional<double> jointDeviation(const std::vector<double>& one,
                                     const std::vector<double>& other) {
  const auto first = Deviation(one);
  const auto second = Deviation(other);
  if (!first || !second) return std::nullopt;
  return std::hypot(*first, *second);
}

void compareByLivak(RelativeQuantity& quantity, double calibratorDelta) {
  const double difference = quantity.deltaCq - calibratorDelta;
  quantity.deltaDeltaCq = difference;
  quantity.ratio = std::exp2(-difference);
  if (!quantity.deviation) return;
  quantity.ratioLow = std::exp2(-(difference + *quantity.deviation));
  quantity.ratioHigh = std::exp2(-(difference - *quantity.deviation));
}

std::optional<double> efficiencyOf(const std::vector<DetectorResult>& detectors,
                                   const std::string& name) {
  const DetectorResult* detector = find(detectors, name);
  return detector != nullptr && detector->curve ? detector->curve->efficiency : std::nullopt;
}

// The ratio by Pfaffl: the change of the target, calculated with its efficiency, divided by the
// change of the control, calculated with its efficiency.
std::optional<double> correctedRatio(const std::vector<DetectorResult>& detectors,
                                     const Reference& reference, const RelativeQuantity& sample,
                                     const RelativeQuantity& calibrator) {
  const auto target = efficiencyOf(detectors, sample.detector);
  const auto control = efficiencyOf(detectors, reference.endogenousControl);
  if (!target || !control) return std::nullopt;
  return std::pow(1 + *target, calibrator.meanCq - sample.meanCq) /
         std::pow(1 + *control, calibrator.controlCq - sample.controlCq);
}

}  // namespace

std::vector<ReplicateGroup> ReplicatesOf(const std::vector<CqResult>& wells,
                                         const std::vector<DetectorResult>& detectors) {
  using Key = std::tuple<std::string, std::string, std::string, std::optional<double>>;
  std::map<Key, std::size_t> places;
  std::vector<ReplicateGroup> groups;
  for (std::size_t i = 0; i < wells.size(); ++i) {
    const AnalysedWell& well = wells[i].curve.well;
    if (well.sample.empty()) continue;
    const Key key(well.sample, well.detector, well.task, well.quantity);
    const auto [place, isNew] = places.try_emplace(key, groups.size());
    if (isNew) {
      groups.push_back({.sample = well.sample,
                        .detector = well.detector,
                        .task = well.task,
                        .quantity = well.quantity,
                        .wells = {},
                        .withCq = 0,
                        .meanCq = {},
                        .deviation = {},
                        .estimate = {}});
    }
    groups[place->second].wells.push_back(i);
  }
  for (ReplicateGroup& group : groups) summarise(group, wells, find(detectors, group.detector));
  return groups;
}

std::vector<RelativeQuantity> RelativeQuantitiesOf(const std::vector<CqResult>& wells,
                                                   const std::vector<DetectorResult>& detectors,
                                                   const Reference& reference) {
  std::vector<RelativeQuantity> quantities;
  if (reference.endogenousControl.empty()) return quantities;
  const SampleOrder samples = collectSamples(wells);
  std::map<std::string, RelativeQuantity> calibrators;  // by detector
  for (const auto& [sample, detector] : samples.order) {
    const auto control = samples.cqs.find({sample, reference.endogenousControl});
    if (detector == reference.endogenousControl || control == samples.cqs.end()) continue;
    const std::vector<double>& cqs = samples.cqs.at({sample, detector});
    RelativeQuantity& quantity = quantities.emplace_back();
    quantity.sample = sample;
    quantity.detector = detector;
    quantity.meanCq = Mean(cqs);
    quantity.controlCq = Mean(control->second);
    quantity.deltaCq = quantity.meanCq - quantity.controlCq;
    quantity.deviation = jointDeviation(cqs, control->second);
    if (sample == reference.calibrator) calibrators[detector] = quantity;
  }
  for (RelativeQuantity& quantity : quantities) {
    const auto calibrator = calibrators.find(quantity.detector);
    if (calibrator == calibrators.end()) continue;
    compareByLivak(quantity, calibrator->second.deltaCq);
    quantity.correctedRatio = correctedRatio(detectors, reference, quantity, calibrator->second);
  }
  return quantities;
}

}  // namespace vex2::lab
