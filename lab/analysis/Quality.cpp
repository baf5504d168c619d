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

constexpr double kReplicateLimit = 0.5;  // cycles
constexpr double kDriftLimit = 0.2;      // of the amplitude
constexpr std::size_t kLevelReadings = 3;

std::string cqText(double cycles) {
  return DecimalsText(cycles, 2);
}

std::string placeOf(const AnalysedWell& well) {
  return (well.plate.empty() ? "" : well.plate + " ") + well.name;
}

QualityFinding findingAt(QualityProblem problem, const AnalysedWell& well, std::string text) {
  return {.problem = problem,
          .plate = well.plate,
          .wells = {well.name},
          .detector = well.detector,
          .text = placeOf(well) + ": " + std::move(text)};
}

// "A1", "A1, A2 and 7 more".
std::string listOf(const std::vector<std::string>& names) {
  constexpr std::size_t kMost = 8;
  std::string list;
  for (std::size_t i = 0; i < std::min(names.size(), kMost); ++i) {
    list += (i > 0 ? ", " : "") + names[i];
  }
  return names.size() > kMost ? list + " and " + std::to_string(names.size() - kMost) + " more"
                              : list;
}

// --- Replicates ---

std::string othersOf(const ReplicateGroup& group, const std::vector<CqResult>& wells,
                     std::size_t except) {
  std::vector<std::string> names;
  for (const std::size_t index : group.wells) {
    if (index != except) names.push_back(placeOf(wells[index].curve.well));
  }
  return listOf(names);
}

// The well that lies farthest from the median of the others; of two, the later one.
void findDifference(const ReplicateGroup& group, const std::vector<CqResult>& wells,
                    std::vector<QualityFinding>& findings) {
  double farthest = kReplicateLimit;
  std::size_t worst = wells.size();
  double others = 0;
  for (const std::size_t index : group.wells) {
    if (!wells[index].cq) continue;
    std::vector<double> rest;
    for (const std::size_t other : group.wells) {
      if (other != index && wells[other].cq) rest.push_back(*wells[other].cq);
    }
    if (rest.empty()) return;
    const double middle = Median(std::move(rest));
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
                                   " cycles from its replicate" +
                                   (group.wells.size() > 2 ? "s " : " ") +
                                   othersOf(group, wells, worst) + ", Cq " + cqText(others)));
}

void findLostReplicates(const ReplicateGroup& group, const std::vector<CqResult>& wells,
                        std::vector<QualityFinding>& findings) {
  if (group.withCq == 0) return;
  for (const std::size_t index : group.wells) {
    if (wells[index].cq) continue;
    findings.push_back(findingAt(QualityProblem::kReplicateDiffers, wells[index].curve.well,
                                 "has no Cq (" + wells[index].note + "), but its replicates " +
                                     othersOf(group, wells, index) + " have"));
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

// The latest Cq of the detector in wells with template.
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

// Whether the curve stays at its largest reading, which is also the channel's.
bool isLevelAt(const AmplificationCurve& curve, double limit) {
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
    } else if (each.cq && isLevelAt(each.curve, largest.at(each.curve.channel))) {
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
    const auto missing = static_cast<std::size_t>(
        std::count_if(each.curve.readings.begin(), each.curve.readings.end(),
                      [](double reading) { return std::isnan(reading); }));
    if (missing == 0) continue;
    findings.push_back(findingAt(
        QualityProblem::kMissingReadings, each.curve.well,
        std::to_string(missing) + " of " +
            Counted(each.curve.readings.size(), "reading is missing", "readings are missing")));
  }
}

std::string statusText(const RunReader& run) {
  return "the run is not complete (status " + run.StatusCode() + ", " +
         Counted(run.FrameCount(), "frame") + ")";
}

}  // namespace

std::vector<QualityFinding> FindProblems(const CqAnalysis& analysis) {
  std::vector<QualityFinding> findings;
  findRisingControls(analysis.wells, findings);
  findReplicateProblems(analysis, findings);
  findSaturation(analysis.wells, findings);
  findDrift(analysis.wells, findings);
  findGaps(analysis.wells, findings);
  return findings;
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
    const std::string list = listOf(missing);
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
    case QualityProblem::kIncompletePlate:
      break;
  }
  return "incomplete plate";
}

}  // namespace vex2::lab
