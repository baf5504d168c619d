#include "lab/analysis/Cq.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <utility>

#include "lab/Guarded.h"
#include "lab/analysis/Comparison.h"
#include "lab/analysis/CurveRules.h"
#include "lab/analysis/DetectorSettings.h"
#include "lab/analysis/NumberText.h"
#include "lab/analysis/QualityRules.h"
#include "lab/analysis/StageReadings.h"
#include "lab/analysis/Tasks.h"

namespace vex2::lab {

namespace {

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

std::vector<CurveCase> casesOf(std::vector<AmplificationCurve> curves,
                               const DetectorSettings& settings, const CqOptions& options) {
  std::vector<CurveCase> cases;
  cases.reserve(curves.size());
  for (AmplificationCurve& curve : curves) {
    const auto baseline = options.baseline ? options.baseline : settings.BaselineOf(curve.well);
    CurveCase& each = cases.emplace_back();
    each.shape = ShapeOf(curve, baseline);
    if (baseline && each.shape && !each.shape->isBaselineSet) each.unusedBaseline = baseline;
    each.curve = std::move(curve);
  }
  JudgeRises(cases);
  return cases;
}

std::vector<DetectorResult> thresholdsOf(const std::vector<CurveCase>& cases,
                                         const DetectorSettings& settings,
                                         const CqOptions& options) {
  const auto automatic = AutomaticThresholds(cases);
  std::map<std::string, std::size_t> known;
  std::vector<DetectorResult> results;
  for (const CurveCase& each : cases) {
    const std::string& name = each.curve.well.detector;
    if (!known.try_emplace(name, results.size()).second) continue;
    DetectorResult& result = results.emplace_back();
    result.name = name;
    result.threshold = options.threshold ? options.threshold : settings.ThresholdOf(name);
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

void addFindings(std::vector<QualityFinding> findings, CqAnalysis& analysis) {
  std::move(findings.begin(), findings.end(), std::back_inserter(analysis.findings));
}

std::string settingOf(const RunReader& run, std::string_view name) {
  for (const SettingValue& setting : run.Settings()) {
    if (setting.name == name) return ValueText(setting.value);
  }
  return {};
}

DetectorSettings settingsOf(const RunReader& run) {
  DetectorSettings settings;
  settings.Add("", run.Detectors());
  if (!run.IsStudy()) return settings;
  for (const std::string& name : run.PlateNames()) settings.Add(name, run.Plate(name).Detectors());
  return settings;
}

CqAnalysis analyseCurves(std::vector<AmplificationCurve> curves, const DetectorSettings& settings,
                         const CqOptions& options) {
  requireThreshold(options);
  requireBaseline(options, curves);
  std::vector<CurveCase> cases = casesOf(std::move(curves), settings, options);
  // Remove the other detectors only now, since a rise is judged by the highest curve of its
  // channel.
  KeepDetector(cases, options.detector,
               [](const CurveCase& each) -> const AnalysedWell& { return each.curve.well; });
  CqAnalysis analysis;
  analysis.method = options.method;
  analysis.detectors = thresholdsOf(cases, settings, options);
  findCqs(std::move(cases), analysis);
  fitStandards(analysis);
  analysis.replicates = ReplicatesOf(analysis.wells, analysis.detectors);
  analysis.findings = FindProblems(analysis);
  if (options.threshold) return analysis;
  for (const DetectorResult& detector : analysis.detectors) {
    addFindings(settings.FindUnusedThresholds(detector.name), analysis);
  }
  return analysis;
}

CqAnalysis analyse(const RunReader& run, PlateCurves measured, const CqOptions& options) {
  return Guarded(run.Path().string(), [&] {
    CqAnalysis analysis = analyseCurves(std::move(measured.curves), settingsOf(run), options);
    const Reference reference{.calibrator = settingOf(run, "calibrator"),
                              .endogenousControl = settingOf(run, "endogenous-control")};
    analysis.relative = RelativeQuantitiesOf(analysis.wells, analysis.detectors, reference);
    // Of one detector alone there is nothing to compare.
    if (!options.detector) addFindings(FindReferenceProblems(analysis, reference), analysis);
    ForEachPlate(run, [&](const RunReader& plate, const std::string& name) {
      const auto skipped =
          std::find_if(measured.skipped.begin(), measured.skipped.end(),
                       [&](const SkippedPlate& each) { return each.name == name; });
      addFindings(
          skipped != measured.skipped.end() ? FindSkipped(*skipped) : FindMissingParts(plate, name),
          analysis);
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
  DetectorSettings settings;
  settings.Add("", detectors);
  return analyseCurves(std::move(curves), settings, options);
}

CqAnalysis AnalyseCq(const RunReader& run, const CqOptions& options) {
  return analyse(run, PlateCurvesOf(run), options);
}

CqAnalysis AnalyseCq(const RunReader& run, const Readings& readings, const CqOptions& options) {
  return analyse(run, {.curves = AmplificationCurvesOf(run, readings), .skipped = {}}, options);
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
