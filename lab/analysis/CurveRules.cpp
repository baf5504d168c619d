#include "lab/analysis/CurveRules.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "lab/Text.h"
#include "lab/analysis/NumberText.h"
#include "lab/analysis/Tasks.h"

namespace vex2::lab {

namespace {

constexpr double kLeastRise = 0.05;  // of the highest curve of the channel
constexpr double kLeastRiseInNoise = 10;

// A level that no single reading decides.
double finalLevel(const CurveShape& shape) {
  constexpr std::ptrdiff_t kCycles = 3;
  return Median({shape.corrected.end() - kCycles, shape.corrected.end()});
}

// What the second derivative says, where it says anything.
std::optional<double> takeOffCycle(const CurveShape& shape) {
  if (shape.isStillRising) return std::nullopt;
  return shape.CycleAt(shape.takeOff);
}

std::string noReadingsNote(const AmplificationCurve& curve) {
  if (curve.channel.empty() && !curve.reporter.empty()) {
    return "no readings of the dye " + curve.reporter;
  }
  return "no readings";
}

// Why a curve that did not rise, or was not long enough, has none.
std::string noRiseNote(const CurveCase& found) {
  switch (*found.reason) {
    case NoCq::kNoReadings:
      return noReadingsNote(found.curve);
    case NoCq::kTooFewCycles:
      return "too few cycles: at least " + std::to_string(kFewestCycles) + " are needed";
    case NoCq::kNoisy:
      return "noisy: rises by " + NumberText(found.shape->amplitude) +
             ", less than 10 times the noise of the baseline, " + NumberText(found.shape->noise);
    default:
      return "no rise: by " + NumberText(std::max(found.shape->amplitude, 0.0)) + " only; " +
             NumberText(found.leastRise) + " is needed";
  }
}

void setNone(CqResult& result, NoCq reason, std::string note) {
  result.reason = reason;
  result.note = std::move(note);
}

void findCrossing(const CurveShape& shape, double threshold, CqResult& result) {
  result.cq = CrossingOf(shape, threshold);
  if (result.cq) return;
  const std::string end = NumberText(shape.cycles.back());
  if (shape.amplitude < threshold) {
    setNone(result, NoCq::kLate,
            "late: does not reach the threshold " + NumberText(threshold) + " by cycle " + end);
  } else {
    setNone(result, NoCq::kEarly, "early: above the threshold from the first cycle on");
  }
}

void findTakeOff(const CurveShape& shape, CqResult& result) {
  result.cq = takeOffCycle(shape);
  if (result.cq) return;
  setNone(result, NoCq::kLate,
          "late: still accelerating at the end, cycle " + NumberText(shape.cycles.back()));
}

std::vector<double> correctedReadings(const AmplificationCurve& curve, const Line& baseline) {
  std::vector<double> corrected(curve.readings.size());
  for (std::size_t i = 0; i < corrected.size(); ++i) {
    corrected[i] = curve.readings[i] - baseline.At(curve.cycles[i]);
  }
  return corrected;
}

void describeShape(const CurveShape& shape, CqResult& result) {
  result.corrected = correctedReadings(result.curve, shape.baseline);
  result.baseline = shape.baselineCycles;
  result.baselineIntercept = shape.baseline.intercept;
  result.baselineSlope = shape.baseline.slope;
  result.noise = shape.noise;
  result.amplitude = shape.amplitude;
}

}  // namespace

std::optional<CycleRange> SetBaselineOf(const Detector& detector) {
  static const Detector fresh;
  const bool isFresh =
      detector.baselineStart == fresh.baselineStart && detector.baselineEnd == fresh.baselineEnd;
  if (detector.autoBaseline || isFresh) return std::nullopt;
  return CycleRange{.first = static_cast<double>(detector.baselineStart),
                    .last = static_cast<double>(detector.baselineEnd)};
}

std::optional<double> SetThresholdOf(const Detector& detector) {
  static const Detector fresh;
  const bool isUsable = std::isfinite(detector.threshold) && detector.threshold > 0;
  if (detector.autoThreshold || !isUsable || detector.threshold == fresh.threshold) {
    return std::nullopt;
  }
  return detector.threshold;
}

void JudgeRises(std::vector<CurveCase>& cases) {
  std::map<std::string, double> highest;  // of each channel
  for (const CurveCase& each : cases) {
    if (!each.shape) continue;
    double& level = highest[each.curve.channel];
    level = std::max(level, finalLevel(*each.shape));
  }
  for (CurveCase& each : cases) {
    if (!each.shape) {
      each.reason = each.curve.cycles.empty() ? NoCq::kNoReadings : NoCq::kTooFewCycles;
      continue;
    }
    each.leastRise = kLeastRise * highest[each.curve.channel];
    const double amplitude = each.shape->amplitude;
    if (!(amplitude > 0) || amplitude < each.leastRise) {
      each.reason = NoCq::kNoRise;
    } else if (amplitude < kLeastRiseInNoise * each.shape->noise) {
      each.reason = NoCq::kNoisy;
    }
  }
}

std::map<std::string, double> AutomaticThresholds(const std::vector<CurveCase>& cases) {
  std::map<std::string, std::vector<double>> levels;
  std::map<std::string, std::vector<double>> controlLevels;
  for (const CurveCase& each : cases) {
    if (!each.Rises() || each.shape->isStillRising) continue;
    const double level = each.shape->CorrectedAt(each.shape->takeOff);
    if (!(level > 0)) continue;
    auto& kind = IsControl(each.curve.well) ? controlLevels : levels;
    kind[each.curve.well.detector].push_back(level);
  }
  levels.merge(controlLevels);  // adds those of detectors that have no others
  std::map<std::string, double> thresholds;
  for (auto& [detector, values] : levels) thresholds[detector] = Median(std::move(values));
  return thresholds;
}

CqResult ResultOf(CurveCase&& found, CqMethod method, const std::optional<double>& threshold) {
  CqResult result;
  result.threshold = threshold;
  if (found.reason) setNone(result, *found.reason, noRiseNote(found));
  if (found.shape && found.reason) UseWholeBaseline(*found.shape);
  result.curve = std::move(found.curve);
  if (!found.shape) return result;
  describeShape(*found.shape, result);
  if (found.reason) return result;
  result.secondDerivativeCq = takeOffCycle(*found.shape);
  if (method == CqMethod::kSecondDerivative) {
    findTakeOff(*found.shape, result);
  } else if (threshold) {
    findCrossing(*found.shape, *threshold, result);
  } else {
    setNone(result, NoCq::kLate, "late: no curve of the detector takes off within the run");
  }
  if (result.cq && found.shape->filled > 0) {
    result.note = Counted(found.shape->filled, "missing reading") + " filled in";
  }
  return result;
}

}  // namespace vex2::lab
