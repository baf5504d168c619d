#include "lab/analysis/Cq.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "lab/Guarded.h"
#include "lab/analysis/Comparison.h"
#include "lab/analysis/CurveRules.h"
#include "lab/analysis/NumberText.h"
#include "lab/analysis/QualityRules.h"
#include "lab/analysis/StageReadings.h"
#include "lab/analysis/Tasks.h"

namespace vex2::lab {

namespace {

using DetectorsByName = std::map<std::string, const Detector*>;

void requireThreshold(const CqOptions& options) {
  if (!options.threshold || (std::isfinite(*options.threshold) && *options.threshold > 0)) return;
  throw Error(ErrorCode::kInvalidValue, "the threshold must be a number above 0");
}

void requireBaseline(const CqOptions& options, const std::vector<AmplificationCurve>& curves) {
  if (!options.baseline) return;
  constexpr std::size_t kFewest = 3;
  bool hasReadings = false;
  for (const AmplificationCurve& curve : curves) {
    if (CyclesWithin(curve.cycles, *options.baseline) >= kFewest) return;
    hasReadings = hasReadings || !curve.cycles.empty();
  }
  if (!hasReadings) return;
  throw Error(ErrorCode::kInvalidValue, "the baseline " + NumberText(options.baseline->first) +
                                            "-" + NumberText(options.baseline->last) +
                                            " has fewer than three cycles of the run");
}

DetectorsByName byName(const std::vector<Detector>& detectors) {
  DetectorsByName result;
  for (const Detector& detector : detectors) result.try_emplace(detector.name, &detector);
  return result;
}

std::vector<CurveCase> casesOf(std::vector<AmplificationCurve> curves,
                               const DetectorsByName& detectors, const CqOptions& options) {
  std::vector<CurveCase> cases;
  cases.reserve(curves.size());
  for (AmplificationCurve& curve : curves) {
    std::optional<CycleRange> baseline = options.baseline;
    const auto detector = detectors.find(curve.well.detector);
    if (!baseline && detector != detectors.end()) baseline = SetBaselineOf(*detector->second);
    CurveCase& each = cases.emplace_back();
    each.shape = ShapeOf(curve, baseline);
    each.curve = std::move(curve);
  }
  JudgeRises(cases);
  return cases;
}

std::vector<DetectorResult> thresholdsOf(const std::vector<CurveCase>& cases,
                                         const DetectorsByName& detectors,
                                         const CqOptions& options) {
  const auto automatic = AutomaticThresholds(cases);
  std::map<std::string, std::size_t> known;
  std::vector<DetectorResult> results;
  for (const CurveCase& each : cases) {
    const std::string& name = each.curve.well.detector;
    if (!known.try_emplace(name, results.size()).second) continue;
    DetectorResult& result = results.emplace_back();
    result.name = name;
    result.threshold = options.threshold;
    const auto detector = detectors.find(name);
    if (!result.threshold && detector != detectors.end()) {
      result.threshold = SetThresholdOf(*detector->second);
    }
    if (result.threshold) continue;
    result.isThresholdAutomatic = true;
    const auto level = automatic.find(name);
    if (level != automatic.end()) result.threshold = level->second;
  }
  return results;
}

std::optional<double> thresholdFor(const CurveCase& found,
                                   const std::map<std::string, const DetectorResult*>& detectors) {
  return detectors.at(found.curve.well.detector)->threshold;
}

void findCqs(std::vector<CurveCase> cases, CqAnalysis& analysis) {
  std::map<std::string, const DetectorResult*> detectors;
  for (const DetectorResult& detector : analysis.detectors) detectors[detector.name] = &detector;
  analysis.wells.reserve(cases.size());
  for (CurveCase& each : cases) {
    const auto threshold = thresholdFor(each, detectors);
    analysis.wells.push_back(ResultOf(std::move(each), analysis.method, threshold));
  }
}

void fitStandards(CqAnalysis& analysis) {
  std::map<std::string, std::vector<StandardPoint>> points;
  for (const CqResult& each : analysis.wells) {
    const AnalysedWell& well = each.curve.well;
    if (!IsStandard(well)) continue;
    points[well.detector].push_back(
        {.well = well, .quantity = *well.quantity, .cq = each.cq, .residual = 0});
  }
  std::map<std::string, const StandardCurve*> curves;
  for (DetectorResult& detector : analysis.detectors) {
    const auto found = points.find(detector.name);
    if (found == points.end()) continue;
    detector.curve = FitStandardCurve(detector.name, std::move(found->second));
    if (detector.curve) curves[detector.name] = &*detector.curve;
  }
  for (CqResult& each : analysis.wells) {
    const auto curve = curves.find(each.curve.well.detector);
    if (!each.cq || !HasUnknownQuantity(each.curve.well) || curve == curves.end()) continue;
    each.estimate = EstimateQuantity(*curve->second, *each.cq);
  }
}

std::string settingOf(const RunReader& run, std::string_view name) {
  for (const SettingValue& setting : run.Settings()) {
    if (setting.name == name) return ValueText(setting.value);
  }
  return {};
}

std::vector<Detector> detectorsOf(const RunReader& run) {
  std::vector<Detector> detectors = run.Detectors();
  if (!run.IsStudy()) return detectors;
  for (const std::string& name : run.PlateNames()) {
    const auto more = run.Plate(name).Detectors();
    detectors.insert(detectors.end(), more.begin(), more.end());
  }
  return detectors;
}

CqAnalysis analyse(const RunReader& run, std::vector<AmplificationCurve> curves,
                   const CqOptions& options) {
  return Guarded(run.Path().string(), [&] {
    CqAnalysis analysis = AnalyseCurves(std::move(curves), detectorsOf(run), options);
    analysis.relative =
        RelativeQuantitiesOf(analysis.wells, analysis.detectors,
                             {.calibrator = settingOf(run, "calibrator"),
                              .endogenousControl = settingOf(run, "endogenous-control")});
    ForEachPlate(run, [&](const RunReader& plate, const std::string& name) {
      const auto missing = FindMissingParts(plate, name);
      analysis.findings.insert(analysis.findings.end(), missing.begin(), missing.end());
    });
    return analysis;
  });
}

}  // namespace

const DetectorResult* CqAnalysis::Find(std::string_view detector) const {
  const auto found = std::find_if(detectors.begin(), detectors.end(),
                                  [&](const auto& each) { return each.name == detector; });
  return found != detectors.end() ? &*found : nullptr;
}

CqAnalysis AnalyseCurves(std::vector<AmplificationCurve> curves,
                         const std::vector<Detector>& detectors, const CqOptions& options) {
  requireThreshold(options);
  requireBaseline(options, curves);
  const DetectorsByName known = byName(detectors);
  std::vector<CurveCase> cases = casesOf(std::move(curves), known, options);
  // Remove the other detectors only now, since a rise is judged by the highest curve of its
  // channel.
  KeepDetector(cases, options.detector,
               [](const CurveCase& each) -> const AnalysedWell& { return each.curve.well; });
  CqAnalysis analysis;
  analysis.method = options.method;
  analysis.detectors = thresholdsOf(cases, known, options);
  findCqs(std::move(cases), analysis);
  fitStandards(analysis);
  analysis.replicates = ReplicatesOf(analysis.wells, analysis.detectors);
  analysis.findings = FindProblems(analysis);
  return analysis;
}

CqAnalysis AnalyseCq(const RunReader& run, const CqOptions& options) {
  return analyse(run, AmplificationCurvesOf(run), options);
}

CqAnalysis AnalyseCq(const RunReader& run, const Readings& readings, const CqOptions& options) {
  return analyse(run, AmplificationCurvesOf(run, readings), options);
}

std::string_view NameOf(CqMethod method) {
  return method == CqMethod::kThreshold ? "threshold" : "sdm";
}

std::string_view NameOf(NoCq reason) {
  switch (reason) {
    case NoCq::kNoReadings:
      return "no readings";
    case NoCq::kTooFewCycles:
      return "too few cycles";
    case NoCq::kNoRise:
      return "no rise";
    case NoCq::kNoisy:
      return "noisy";
    case NoCq::kEarly:
      return "early";
    case NoCq::kLate:
      break;
  }
  return "late";
}

}  // namespace vex2::lab
