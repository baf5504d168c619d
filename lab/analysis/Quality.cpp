#include "lab/analysis/Quality.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "lab/Text.h"
#include "lab/analysis/CurveShape.h"
#include "lab/analysis/NumberText.h"
#include "lab/analysis/QualityRules.h"
#include "lab/analysis/Statistics.h"
#include "lab/analysis/Tasks.h"

namespace vex2::lab {

namespace {

constexpr double kReplicateLimit = 0.5;  // in cycles
constexpr double kDriftLimit = 0.2;      // fraction of the amplitude
constexpr std::size_t kLevelReadings = 3;
constexpr std::size_t kMostListed = 8;

std::string cqText(double cycles) {
  return DecimalsText(cycles, 2);
}

QualityFinding findingAt(QualityProblem problem, const AnalysedWell& well, std::string text) {
  return {.problem = problem,
          .plate = well.plate,
          .wells = {well.name},
          .detector = well.detector,
          .text = PlaceOf(well) + ": " + std::move(text)};
}

// --- Replicates ---

// The replicates of a well that have a Cq, as text: "its replicate A1", "its replicates A1, A3".
std::string othersOf(const ReplicateGroup& group, const std::vector<CqResult>& wells,
                     std::size_t except) {
  std::vector<std::string> names;
  for (const std::size_t index : group.wells) {
    if (names.size() == kMostListed) break;
    if (index != except && wells[index].cq) names.push_back(PlaceOf(wells[index].curve.well));
  }
  const std::size_t count = group.withCq - (wells[except].cq ? 1 : 0);
  return (count == 1 ? "its replicate " : "its replicates ") + ListOf(names, count);
}

// The median of `sorted` without the value at `index`. `sorted` must have at least two values.
double medianWithout(const std::vector<double>& sorted, std::size_t index) {
  const auto at = [&](std::size_t i) { return sorted[i < index ? i : i + 1]; };
  const std::size_t count = sorted.size() - 1;
  return count % 2 == 1 ? at(count / 2) : (at(count / 2 - 1) + at(count / 2)) / 2;
}

// Adds a finding about the well that is farthest from the median of the others. If two wells are
// equally far, the finding is about the later one.
void findDifference(const ReplicateGroup& group, const std::vector<CqResult>& wells,
                    std::vector<QualityFinding>& findings) {
  std::vector<double> sorted;
  for (const std::size_t index : group.wells) {
    if (wells[index].cq) sorted.push_back(*wells[index].cq);
  }
  if (sorted.size() < 2) return;
  std::sort(sorted.begin(), sorted.end());
  double farthest = kReplicateLimit;
  std::size_t worst = wells.size();
  double others = 0;
  for (const std::size_t index : group.wells) {
    if (!wells[index].cq) continue;
    const auto own = std::lower_bound(sorted.begin(), sorted.end(), *wells[index].cq);
    const double middle = medianWithout(sorted, static_cast<std::size_t>(own - sorted.begin()));
    const double distance = std::fabs(*wells[index].cq - middle);
    if (distance < farthest || distance <= kReplicateLimit) continue;
    farthest = distance;
    worst = index;
    others = middle;
  }
  if (worst == wells.size()) return;
  const CqResult& well = wells[worst];
  findings.push_back(findingAt(QualityProblem::kReplicateDiffers, well.curve.well,
                               "Cq " + cqText(*well.cq) + " differs by " + cqText(farthest) +
                                   " cycles from " + othersOf(group, wells, worst) + ", Cq " +
                                   cqText(others)));
}

void findLostReplicates(const ReplicateGroup& group, const std::vector<CqResult>& wells,
                        std::vector<QualityFinding>& findings) {
  if (group.withCq == 0) return;
  for (const std::size_t index : group.wells) {
    if (wells[index].cq) continue;
    findings.push_back(findingAt(QualityProblem::kReplicateDiffers, wells[index].curve.well,
                                 "has no Cq (" + wells[index].note + "), but " +
                                     othersOf(group, wells, index) +
                                     (group.withCq == 1 ? " has" : " have")));
  }
}

void findReplicateProblems(const CqAnalysis& analysis, std::vector<QualityFinding>& findings) {
  for (const ReplicateGroup& group : analysis.replicates) {
    if (group.wells.size() < 2 || IsControl(analysis.wells[group.wells.front()].curve.well)) {
      continue;
    }
    findDifference(group, analysis.wells, findings);
    findLostReplicates(group, analysis.wells, findings);
  }
}

// --- Controls ---

// The latest Cq of each detector in wells with a template.
std::map<std::string, double> latestSamples(const std::vector<CqResult>& wells) {
  std::map<std::string, double> latest;
  for (const CqResult& each : wells) {
    if (!each.cq || IsControl(each.curve.well)) continue;
    double& known = latest[each.curve.well.detector];
    known = std::max(known, *each.cq);
  }
  return latest;
}

void findRisingControls(const std::vector<CqResult>& wells, std::vector<QualityFinding>& findings) {
  const auto latest = latestSamples(wells);
  for (const CqResult& each : wells) {
    if (!each.cq || !IsControl(each.curve.well)) continue;
    std::string text = "no-template control rises at Cq " + cqText(*each.cq);
    const auto sample = latest.find(each.curve.well.detector);
    if (sample != latest.end()) {
      const bool isLater = *each.cq > sample->second;
      text += ", " + cqText(std::fabs(*each.cq - sample->second)) + " cycles " +
              (isLater ? "after" : "before") + " the last sample";
    }
    findings.push_back(findingAt(QualityProblem::kControlRises, each.curve.well, std::move(text)));
  }
}

// --- Readings ---

// Whether some consecutive readings of the curve are all equal to `limit`, the largest reading of
// the channel, although those of the baseline differ by more than the steps in which they are
// stored.
bool isLevelAt(const CqResult& result, double limit) {
  const AmplificationCurve& curve = result.curve;
  std::vector<double> ofBaseline;
  for (std::size_t i = 0; i < curve.readings.size(); ++i) {
    const bool isIn = result.baseline && curve.cycles[i] >= result.baseline->first &&
                      curve.cycles[i] <= result.baseline->last;
    if (isIn && std::isfinite(curve.readings[i])) ofBaseline.push_back(curve.readings[i]);
  }
  if (!(ReadingNoise(ofBaseline) >= SmallestStep(curve.readings))) return false;
  std::size_t level = 0;
  for (const double reading : curve.readings) {
    level = reading == limit ? level + 1 : 0;
    if (level == kLevelReadings) return true;
  }
  return false;
}

std::map<std::string, double> largestReadings(const std::vector<CqResult>& wells) {
  std::map<std::string, double> largest;
  for (const CqResult& each : wells) {
    for (const double reading : each.curve.readings) {
      const auto known = largest.try_emplace(each.curve.channel, reading).first;
      known->second = std::fmax(known->second, reading);
    }
  }
  return largest;
}

void findSaturation(const std::vector<CqResult>& wells, std::vector<QualityFinding>& findings) {
  const auto largest = largestReadings(wells);
  for (const CqResult& each : wells) {
    if (each.curve.atStoredLimit > 0) {
      findings.push_back(findingAt(
          QualityProblem::kSaturated, each.curve.well,
          Counted(each.curve.atStoredLimit, "reading is", "readings are") +
              " at the largest number that the document can store: record with a smaller scale"));
    } else if (each.cq && isLevelAt(each, largest.at(each.curve.channel))) {
      findings.push_back(findingAt(QualityProblem::kSaturated, each.curve.well,
                                   "stays at the largest reading of the run, " +
                                       NumberText(largest.at(each.curve.channel)) +
                                       ": the detector may be saturated"));
    }
  }
}

void findDrift(const std::vector<CqResult>& wells, std::vector<QualityFinding>& findings) {
  for (const CqResult& each : wells) {
    if (!each.cq) continue;
    const double cycles = each.curve.cycles.back() - each.curve.cycles.front();
    const double drift = each.baselineSlope * cycles;
    if (std::fabs(drift) <= kDriftLimit * each.amplitude) continue;
    findings.push_back(findingAt(QualityProblem::kDriftingBaseline, each.curve.well,
                                 std::string("the baseline ") + (drift > 0 ? "rises" : "falls") +
                                     " by " + NumberText(std::fabs(drift)) +
                                     " over the run, the curve by " + NumberText(each.amplitude)));
  }
}

void findGaps(const std::vector<CqResult>& wells, std::vector<QualityFinding>& findings) {
  for (const CqResult& each : wells) {
    const std::size_t skipped = MissingCycles(each.curve.cycles);
    const std::size_t missing =
        skipped + static_cast<std::size_t>(
                      std::count_if(each.curve.readings.begin(), each.curve.readings.end(),
                                    [](double reading) { return std::isnan(reading); }));
    if (missing == 0) continue;
    findings.push_back(findingAt(QualityProblem::kMissingReadings, each.curve.well,
                                 std::to_string(missing) + " of " +
                                     Counted(each.curve.readings.size() + skipped,
                                             "reading is missing", "readings are missing")));
  }
}

void findOutliers(const std::vector<CqResult>& wells, std::vector<QualityFinding>& findings) {
  for (const CqResult& each : wells) {
    if (each.outliers == 0) continue;
    findings.push_back(findingAt(QualityProblem::kOutlier, each.curve.well,
                                 Counted(each.outliers, "reading lies", "readings lie") +
                                     " far beside the cycles before and after, and " +
                                     (each.outliers == 1 ? "was" : "were") +
                                     " left out: look at the "
                                     "curve for bubbles or dust"));
  }
}

std::string statusText(const RunReader& run) {
  return "the run is not complete (status " + run.StatusCode() + ", " +
         Counted(run.FrameCount(), "frame") + ")";
}

}  // namespace

std::string PlaceOf(const AnalysedWell& well) {
  return (well.plate.empty() ? "" : well.plate + " ") + well.name;
}

std::string ListOf(const std::vector<std::string>& names, std::size_t count) {
  std::string list;
  const std::size_t shown = std::min(names.size(), kMostListed);
  for (std::size_t i = 0; i < shown; ++i) list += (i > 0 ? ", " : "") + names[i];
  return count > shown ? list + " and " + std::to_string(count - shown) + " more" : list;
}

std::vector<QualityFinding> FindProblems(const CqAnalysis& analysis) {
  std::vector<QualityFinding> findings;
  findRisingControls(analysis.wells, findings);
  findReplicateProblems(analysis, findings);
  findSaturation(analysis.wells, findings);
  findDrift(analysis.wells, findings);
  findGaps(analysis.wells, findings);
  findOutliers(analysis.wells, findings);
  const auto settings = FindSettingProblems(analysis);
  findings.insert(findings.end(), settings.begin(), settings.end());
  return findings;
}

std::vector<QualityFinding> FindSkipped(const SkippedPlate& plate) {
  return {{.problem = QualityProblem::kIncompletePlate,
           .plate = plate.name,
           .wells = {},
           .detector = {},
           .text = plate.name + ": is not analysed: " + plate.why}};
}

std::vector<QualityFinding> FindMissingParts(const RunReader& run, const std::string& name) {
  std::vector<QualityFinding> findings;
  const auto add = [&](std::vector<std::string> wells, const std::string& text) {
    findings.push_back({.problem = QualityProblem::kIncompletePlate,
                        .plate = name,
                        .wells = std::move(wells),
                        .detector = {},
                        .text = (name.empty() ? "" : name + ": ") + text});
  };
  if (run.State() == RunState::kNotStarted || run.State() == RunState::kInProgress) {
    add({}, statusText(run));
  }
  const std::set<std::uint16_t> measured(run.Wells().begin(), run.Wells().end());
  std::vector<std::string> missing;
  for (const Well& well : run.Plate().wells) {
    if (!well.targets.empty() && !measured.contains(well.number)) missing.push_back(well.name);
  }
  if (!missing.empty()) {
    const std::string list = ListOf(missing, missing.size());
    const std::string count =
        Counted(missing.size(), "well of the setup was", "wells of the setup were");
    add(std::move(missing), count + " not measured: " + list);
  }
  return findings;
}

std::string_view NameOf(QualityProblem problem) {
  switch (problem) {
    case QualityProblem::kReplicateDiffers:
      return "replicate differs";
    case QualityProblem::kControlRises:
      return "control rises";
    case QualityProblem::kSaturated:
      return "saturated";
    case QualityProblem::kDriftingBaseline:
      return "drifting baseline";
    case QualityProblem::kMissingReadings:
      return "missing readings";
    case QualityProblem::kOutlier:
      return "outlier reading";
    case QualityProblem::kSettingNotUsed:
      return "setting not used";
    case QualityProblem::kNoStandardCurve:
      return "no standard curve";
    case QualityProblem::kIncompletePlate:
      break;
  }
  return "incomplete plate";
}

}  // namespace vex2::lab
