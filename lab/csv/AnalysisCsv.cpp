#include "lab/csv/AnalysisCsv.h"

#include "lab/analysis/NumberText.h"

namespace vex2::lab {

namespace {

constexpr int kCqDecimals = 4;

std::string measured(const std::optional<double>& number) {
  return number ? MeasuredText(*number) : "";
}

std::string quantityOf(const CqResult& result) {
  if (result.curve.well.quantity) return measured(result.curve.well.quantity);
  return result.estimate ? NumberText(result.estimate->quantity) : "";
}

std::string noteOf(const CqResult& result) {
  if (!result.estimate) return result.note;
  std::string note = "quantity from the standard curve: ";
  if (result.curve.well.quantity) note += NumberText(result.estimate->quantity) + ", ";
  note +=
      "95 % from " + NumberText(result.estimate->low) + " to " + NumberText(result.estimate->high);
  return result.note.empty() ? note : result.note + "; " + note;
}

std::string cycleText(const std::optional<CycleRange>& range, double CycleRange::*end) {
  return range ? NumberText((*range).*end) : "";
}

}  // namespace

std::vector<std::string> CqColumns() {
  return {"well",   "sample",    "detector",       "task",         "quantity", "cq",
          "method", "threshold", "baseline_start", "baseline_end", "note"};
}

std::vector<std::string> CqFields(const CqResult& result, CqMethod method) {
  const AnalysedWell& well = result.curve.well;
  return {well.name,
          well.sample,
          well.detector,
          well.task,
          quantityOf(result),
          result.cq ? DecimalsText(*result.cq, kCqDecimals) : "",
          std::string(NameOf(method)),
          measured(result.threshold),
          cycleText(result.baseline, &CycleRange::first),
          cycleText(result.baseline, &CycleRange::last),
          noteOf(result)};
}

std::vector<std::string> MeltColumns() {
  return {"well", "sample", "detector", "peak", "temperature_c", "height", "width"};
}

std::vector<std::vector<std::string>> MeltFields(const MeltCurve& curve) {
  const AnalysedWell& well = curve.well;
  if (curve.peaks.empty()) return {{well.name, well.sample, well.detector, "", "", "", ""}};
  std::vector<std::vector<std::string>> rows;
  for (std::size_t i = 0; i < curve.peaks.size(); ++i) {
    const MeltPeak& peak = curve.peaks[i];
    rows.push_back({well.name, well.sample, well.detector, std::to_string(i + 1),
                    DecimalsText(peak.temperature, 3), MeasuredText(peak.height),
                    DecimalsText(peak.width, 3)});
  }
  return rows;
}

}  // namespace vex2::lab
