// What the document sets for the analysis and its standards, and what could not be used of it.
#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include "lab/Nearest.h"
#include "lab/Text.h"
#include "lab/analysis/NumberText.h"
#include "lab/analysis/QualityRules.h"
#include "lab/analysis/Tasks.h"

namespace vex2::lab {

namespace {

QualityFinding findingOf(QualityProblem problem, const std::string& detector,
                         const std::string& text) {
  return {.problem = problem,
          .plate = {},
          .wells = {},
          .detector = detector,
          .text = (detector.empty() ? "" : detector + ": ") + text};
}

// --- Standards ---

/// The wells of task STND of a detector.
struct Standards {
  std::vector<std::string> withoutQuantity;
  std::size_t withQuantity = 0;
  std::size_t withCq = 0;
  std::set<double> quantities;  // of those with a Cq

  void Add(const CqResult& result) {
    const AnalysedWell& well = result.curve.well;
    if (!IsStandard(well)) return withoutQuantity.push_back(PlaceOf(well));
    ++withQuantity;
    if (!result.cq) return;
    ++withCq;
    quantities.insert(*well.quantity);
  }
};

// Why there is no curve.
std::string whyNoCurve(const Standards& standards) {
  if (standards.withQuantity == 0) return "no standard has a quantity above 0";
  if (standards.withCq == 0) return "no standard has a Cq";
  if (standards.quantities.size() == 1) {
    return (standards.withCq == 1 ? "the only standard with a Cq has"
                                  : "all standards with a Cq have") +
           std::string(" the quantity ") + NumberText(*standards.quantities.begin()) +
           ", and two quantities are needed";
  }
  return "only " + std::to_string(standards.withCq) + " standards have a Cq, and three are needed";
}

void findStandardProblems(const CqAnalysis& analysis, std::vector<QualityFinding>& findings) {
  std::map<std::string, Standards> standards;
  for (const CqResult& each : analysis.wells) {
    if (each.curve.well.task == "STND") standards[each.curve.well.detector].Add(each);
  }
  for (const DetectorResult& detector : analysis.detectors) {
    const auto found = standards.find(detector.name);
    if (found == standards.end()) continue;
    const auto add = [&](const std::string& text) {
      findings.push_back(findingOf(QualityProblem::kNoStandardCurve, detector.name, text));
    };
    if (!detector.curve) {
      add("has no standard curve: " + whyNoCurve(found->second));
    } else if (!detector.curve->efficiency) {
      add("no quantity is read off the standard curve, because it does not fall");
    }
    const std::vector<std::string>& without = found->second.withoutQuantity;
    if (!without.empty() && found->second.withQuantity > 0) {
      add(Counted(without.size(), "standard has", "standards have") +
          " no quantity above 0: " + ListOf(without, without.size()));
    }
  }
}

// --- Baselines ---

// One finding for the wells of a plate and detector.
void findUnusedBaselines(const CqAnalysis& analysis, std::vector<QualityFinding>& findings) {
  std::map<std::pair<std::string, std::string>, std::size_t> known;
  for (const CqResult& each : analysis.wells) {
    if (!each.unusedBaseline) continue;
    const AnalysedWell& well = each.curve.well;
    const auto [place, isNew] = known.try_emplace({well.plate, well.detector}, findings.size());
    if (isNew) {
      const CycleRange& range = *each.unusedBaseline;
      findings.push_back(
          findingOf(QualityProblem::kSettingNotUsed, well.detector,
                    "the baseline " + NumberText(range.first) + "-" + NumberText(range.last) +
                        (well.plate.empty() ? "" : " of " + well.plate) +
                        " is not used, because it has fewer than three cycles with readings"));
      findings.back().plate = well.plate;
    }
    findings[place->second].wells.push_back(well.name);
  }
}

// --- References ---

/// What the analysis has of the references of a document.
class ReferenceCheck {
 public:
  ReferenceCheck(const CqAnalysis& analysis, const Reference& reference)
      : analysis_(analysis), reference_(reference) {
    for (const CqResult& each : analysis.wells) {
      const AnalysedWell& well = each.curve.well;
      detectors_.insert(well.detector);
      if (!well.sample.empty()) samples_.insert(well.sample);
      if (!each.cq || well.sample.empty() || IsControl(well)) continue;
      (well.detector == reference.endogenousControl ? withControl_ : withTarget_)
          .insert(well.sample);
    }
  }

  std::vector<QualityFinding> Find() {
    if (reference_.endogenousControl.empty()) {
      if (!reference_.calibrator.empty()) {
        add("samples are not compared with the calibrator '" + reference_.calibrator +
            "', because no endogenous control is set");
      }
      return std::move(findings_);
    }
    findControl();
    if (!reference_.calibrator.empty()) findCalibrator();
    return std::move(findings_);
  }

 private:
  void add(const std::string& text) {
    findings_.push_back(findingOf(QualityProblem::kSettingNotUsed, {}, text));
  }

  static std::string nearTo(const std::string& name, const std::set<std::string>& names) {
    return DidYouMean(name, std::vector<std::string>(names.begin(), names.end()));
  }

  void findControl() {
    const std::string& control = reference_.endogenousControl;
    if (!detectors_.contains(control)) {
      return add("samples are not compared, because no well has the endogenous control '" +
                 control + "'" + nearTo(control, detectors_));
    }
    std::vector<std::string> without;
    std::set_difference(withTarget_.begin(), withTarget_.end(), withControl_.begin(),
                        withControl_.end(), std::back_inserter(without));
    if (without.empty()) return;
    add(Counted(without.size(), "sample has", "samples have") +
        " no Cq of the endogenous control '" + control + "', and " +
        (without.size() == 1 ? "is" : "are") + " not compared: " + ListOf(without, without.size()));
  }

  void findCalibrator() {
    const std::string& calibrator = reference_.calibrator;
    if (!samples_.contains(calibrator)) {
      return add("there are no ratios, because no well has the calibrator '" + calibrator + "'" +
                 nearTo(calibrator, samples_));
    }
    std::set<std::string> without;
    for (const RelativeQuantity& each : analysis_.relative) {
      if (!each.deltaDeltaCq) without.insert(each.detector);
    }
    if (without.empty()) return;
    const std::vector<std::string> names(without.begin(), without.end());
    add("there are no ratios of " + ListOf(names, names.size()) + ", because the calibrator '" +
        calibrator + "' has no Cq to compare with");
  }

  const CqAnalysis& analysis_;
  const Reference& reference_;
  std::set<std::string> detectors_;
  std::set<std::string> samples_;
  std::set<std::string> withControl_;  // samples that have a Cq of it
  std::set<std::string> withTarget_;
  std::vector<QualityFinding> findings_;
};

}  // namespace

std::vector<QualityFinding> FindSettingProblems(const CqAnalysis& analysis) {
  std::vector<QualityFinding> findings;
  findUnusedBaselines(analysis, findings);
  findStandardProblems(analysis, findings);
  return findings;
}

std::vector<QualityFinding> FindReferenceProblems(const CqAnalysis& analysis,
                                                  const Reference& reference) {
  return ReferenceCheck(analysis, reference).Find();
}

}  // namespace vex2::lab
