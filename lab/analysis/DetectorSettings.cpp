#include "lab/analysis/DetectorSettings.h"

#include <cmath>

#include "lab/analysis/NumberText.h"

namespace vex2::lab {

namespace {

// A document does not distinguish the values of a new detector from the same values that a user
// chose, so those count as not set.
const Detector& freshDetector() {
  static const Detector fresh;
  return fresh;
}

std::optional<CycleRange> setBaselineOf(const Detector& detector) {
  const bool isFresh = detector.baselineStart == freshDetector().baselineStart &&
                       detector.baselineEnd == freshDetector().baselineEnd;
  if (detector.autoBaseline || isFresh) return std::nullopt;
  return CycleRange{.first = static_cast<double>(detector.baselineStart),
                    .last = static_cast<double>(detector.baselineEnd)};
}

bool isThresholdSet(const Detector& detector) {
  return !detector.autoThreshold && detector.threshold != freshDetector().threshold;
}

std::optional<double> setThresholdOf(const Detector& detector) {
  const bool isUsable = std::isfinite(detector.threshold) && detector.threshold > 0;
  if (!isThresholdSet(detector) || !isUsable) return std::nullopt;
  return detector.threshold;
}

std::string nameOf(const std::string& plate) {
  return plate.empty() ? "the study" : plate;
}

}  // namespace

void DetectorSettings::Add(const std::string& plate, const std::vector<Detector>& detectors) {
  for (const Detector& detector : detectors) {
    entries_[detector.name].push_back({.plate = plate, .detector = detector});
  }
}

const std::vector<DetectorSettings::Entry>& DetectorSettings::entriesOf(
    const std::string& detector) const {
  static const std::vector<Entry> none;
  const auto found = entries_.find(detector);
  return found != entries_.end() ? found->second : none;
}

std::optional<CycleRange> DetectorSettings::BaselineOf(const AnalysedWell& well) const {
  std::optional<CycleRange> ofStudy;
  for (const Entry& entry : entriesOf(well.detector)) {
    const auto baseline = setBaselineOf(entry.detector);
    if (entry.plate == well.plate && (baseline || entry.detector.autoBaseline)) return baseline;
    if (entry.plate.empty() && !ofStudy) ofStudy = baseline;
  }
  return ofStudy;
}

std::optional<double> DetectorSettings::ThresholdOf(const std::string& detector) const {
  for (const Entry& entry : entriesOf(detector)) {
    if (const auto threshold = setThresholdOf(entry.detector)) return threshold;
  }
  return std::nullopt;
}

std::vector<QualityFinding> DetectorSettings::FindUnusedThresholds(
    const std::string& detector) const {
  std::vector<QualityFinding> findings;
  const auto add = [&](const std::string& plate, const std::string& text) {
    findings.push_back({.problem = QualityProblem::kSettingNotUsed,
                        .plate = plate,
                        .wells = {},
                        .detector = detector,
                        .text = detector + ": " + text});
  };
  const Entry* used = nullptr;
  for (const Entry& entry : entriesOf(detector)) {
    const float set = entry.detector.threshold;
    if (!setThresholdOf(entry.detector)) {
      // Some programs store 0 where nobody set a threshold.
      if (isThresholdSet(entry.detector) && set != 0) {
        add(entry.plate, "the threshold " + NumberText(set) +
                             (entry.plate.empty() ? "" : " of " + entry.plate) +
                             " is not used, because it is not a number above 0");
      }
    } else if (used == nullptr) {
      used = &entry;
    } else if (set != used->detector.threshold) {
      add(entry.plate, "the threshold " + NumberText(set) + " of " + nameOf(entry.plate) +
                           " is not used, because " + nameOf(used->plate) + " sets " +
                           NumberText(used->detector.threshold) + " for all plates");
    }
  }
  return findings;
}

}  // namespace vex2::lab
