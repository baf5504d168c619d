#include "lab/analysis/CurveRules.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "lab/Text.h"
#include "lab/analysis/NumberText.h"
#include "lab/analysis/Tasks.h"

namespace vex2::lab {

namespace {

constexpr double kLeastRise = 0.05;  // fraction of the highest curve of the channel
constexpr double kLeastRiseInNoise = 10;
constexpr double kLeastRiseInErrors = 7;
constexpr std::size_t kFirstSettled = 2;  // index of the third cycle

// The level at the end of the curve. It is a median, so that a single reading does not decide.
double finalLevel(const CurveShape& shape) {
  constexpr std::ptrdiff_t kCycles = 3;
  return Median({shape.corrected.end() - kCycles, shape.corrected.end()});
}

// Whether the baseline was found automatically and is so early that it may contain product.
bool overlapsRise(const CurveShape& shape) {
  constexpr double kLastOverlapping = 10;  // an index: take-off before the eleventh cycle
  return !shape.isBaselineSet && shape.takeOff < kLastOverlapping;
}

// Whether a baseline was set that contains the take-off.
bool isBaselineInRise(const CurveShape& shape) {
  return shape.isBaselineSet && shape.baselineCycles.last >= shape.CycleAt(shape.takeOff);
}

// The rise of the readings from the third cycle to the level at the end.
double riseOf(const CurveShape& shape) {
  return Median({shape.readings.end() - 3, shape.readings.end()}) - shape.readings[kFirstSettled];
}

bool isWithinNoise(const CurveShape& shape) {
  return shape.lasting < kLeastRiseInNoise * shape.noise;
}

bool isRise(const CurveShape& shape, double rise, double leastRise) {
  return rise > 0 && rise >= leastRise && rise >= kLeastRiseInNoise * shape.readingNoise;
}

// Whether most of the rise is over before a baseline can be found.
bool risesAtOnce(const CurveShape& shape, double leastRise) {
  constexpr std::size_t kHalfRisen = 9;  // index of the tenth cycle
  const double rise = riseOf(shape);
  return !shape.isBaselineSet && isRise(shape, rise, leastRise) &&
         shape.readings[kHalfRisen] - shape.readings[kFirstSettled] >= rise / 2;
}

// The maximum of the second derivative in cycles; nothing if it is at an end of the curve.
std::optional<double> takeOffCycle(const CurveShape& shape) {
  if (shape.isStillRising || shape.isRisingFirst) return std::nullopt;
  return shape.CycleAt(shape.takeOff);
}

std::string noReadingsNote(const AmplificationCurve& curve) {
  if (!curve.isPlateMeasured) return "no readings of this plate";
  if (!curve.readings.empty()) {
    return "no readings: all " + std::to_string(curve.readings.size()) + " are missing";
  }
  if (curve.channel.empty() && !curve.reporter.empty()) {
    return "no readings of the dye " + curve.reporter;
  }
  return "no readings";
}

bool hasReadings(const AmplificationCurve& curve) {
  return std::any_of(curve.readings.begin(), curve.readings.end(),
                     [](double reading) { return std::isfinite(reading); });
}

std::string tooFewNote(const AmplificationCurve& curve) {
  if (MissingCycles(curve.cycles) > curve.cycles.size()) {
    return "too few cycles: most of the cycles from " + NumberText(curve.cycles.front()) + " to " +
           NumberText(curve.cycles.back()) + " are missing";
  }
  return "too few cycles: at least " + std::to_string(kFewestCycles) + " are needed";
}

std::string baselineText(const CycleRange& range) {
  return NumberText(range.first) + "-" + NumberText(range.last);
}

std::string baselineInRiseText(const CurveShape& shape) {
  return "the set baseline " + baselineText(shape.baselineCycles) + " reaches into the rise";
}

// A curve that does not rise can have its take-off in any cycle, so its baseline gets no note.
std::string setBaselineNote(const CurveCase& found) {
  const CurveShape& shape = *found.shape;
  const bool isAtFault = isBaselineInRise(shape) && isRise(shape, riseOf(shape), found.leastRise);
  return isAtFault ? "; " + baselineInRiseText(shape) : "";
}

std::string noisyNote(const CurveCase& found) {
  const CurveShape& shape = *found.shape;
  const std::string rise = "noisy: rises by " + NumberText(shape.lasting) + ", less than ";
  if (isWithinNoise(shape)) {
    return rise + "10 times the noise of the baseline, " + NumberText(shape.noise) +
           setBaselineNote(found);
  }
  return rise + "7 times what the line through cycles " + baselineText(shape.baselineCycles) +
         " is uncertain there, " + NumberText(shape.lasting / shape.lastingInErrors);
}

// The note about a curve that has no quantification cycle because it does not rise or is too short.
std::string noRiseNote(const CurveCase& found) {
  switch (*found.reason) {
    case NoCq::kNoReadings:
      return noReadingsNote(found.curve);
    case NoCq::kTooFewCycles:
      return tooFewNote(found.curve);
    case NoCq::kEarly:
      return "early: most of the rise is before a baseline can be found";
    case NoCq::kNoisy:
      return noisyNote(found);
    default:
      return "no rise: by " + NumberText(std::max(found.shape->lasting, 0.0)) + " only; " +
             NumberText(found.leastRise) + " is needed" + setBaselineNote(found);
  }
}

void addNote(CqResult& result, const std::string& note) {
  result.note += (result.note.empty() ? "" : "; ") + note;
}

// Adds the warnings about a quantification cycle that was found.
void addWarnings(const CurveShape& shape, CqMethod method, CqResult& result) {
  if (shape.filled > 0) addNote(result, Counted(shape.filled, "missing reading") + " filled in");
  if (shape.outliers > 0) addNote(result, Counted(shape.outliers, "outlier") + " left out");
  if (shape.isFilledAtTakeOff) {
    addNote(result, "the cycle is uncertain: readings are missing where the curve takes off");
  }
  if (method == CqMethod::kSecondDerivative) return;
  if (overlapsRise(shape)) {
    addNote(result, "the cycle may be late: the curve rises before a baseline can be found");
  } else if (isBaselineInRise(shape)) {
    addNote(result, baselineInRiseText(shape));
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
  if (shape.isRisingFirst) {
    return setNone(result, NoCq::kEarly, "early: accelerates most in the first cycles or before");
  }
  setNone(result, NoCq::kLate,
          "late: still accelerating at the end, cycle " + NumberText(shape.cycles.back()));
}

// Why the curve does not rise; nothing if it does. The level must be reached in two consecutive
// cycles, so that a single reading does not decide.
std::optional<NoCq> whyNoRise(const CurveShape& shape, double leastRise) {
  std::optional<NoCq> reason;
  if (!(shape.lasting > 0) || shape.lasting < leastRise) {
    reason = NoCq::kNoRise;
  } else if (isWithinNoise(shape) || shape.lastingInErrors < kLeastRiseInErrors) {
    reason = NoCq::kNoisy;
  }
  const bool isDoubtful = reason || shape.isRisingFirst;
  return isDoubtful && risesAtOnce(shape, leastRise) ? NoCq::kEarly : reason;
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
  result.outliers = shape.outliers;
}

}  // namespace

void JudgeRises(std::vector<CurveCase>& cases) {
  std::map<std::string, double> highest;  // by channel
  for (const CurveCase& each : cases) {
    if (!each.shape) continue;
    double& level = highest[each.curve.channel];
    level = std::max(level, finalLevel(*each.shape));
  }
  for (CurveCase& each : cases) {
    if (!each.shape) {
      each.reason = hasReadings(each.curve) ? NoCq::kTooFewCycles : NoCq::kNoReadings;
      continue;
    }
    each.leastRise = kLeastRise * highest[each.curve.channel];
    each.reason = whyNoRise(*each.shape, each.leastRise);
  }
}

std::map<std::string, double> AutomaticThresholds(const std::vector<CurveCase>& cases) {
  std::map<std::string, std::vector<double>> levels;
  std::map<std::string, std::vector<double>> controlLevels;
  for (const CurveCase& each : cases) {
    if (!each.Rises() || !takeOffCycle(*each.shape)) continue;
    const double level = each.shape->CorrectedAt(each.shape->takeOff);
    if (!(level > 0)) continue;
    auto& kind = IsControl(each.curve.well) ? controlLevels : levels;
    kind[each.curve.well.detector].push_back(level);
  }
  levels.merge(controlLevels);  // add the detectors that only controls have
  std::map<std::string, double> thresholds;
  for (auto& [detector, values] : levels) thresholds[detector] = Median(std::move(values));
  return thresholds;
}

CqResult ResultOf(CurveCase&& found, CqMethod method, const std::optional<double>& threshold) {
  CqResult result;
  result.threshold = threshold;
  result.unusedBaseline = found.unusedBaseline;
  if (found.reason) setNone(result, *found.reason, noRiseNote(found));
  const bool isLevel = found.reason && *found.reason != NoCq::kEarly;
  if (found.shape && isLevel && !found.shape->isBaselineSet) UseWholeBaseline(*found.shape);
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
  if (result.cq) addWarnings(*found.shape, method, result);
  if (result.unusedBaseline && method == CqMethod::kThreshold) {
    addNote(result, "the set baseline " + baselineText(*result.unusedBaseline) +
                        " has fewer than three cycles with readings");
  }
  return result;
}

}  // namespace vex2::lab
