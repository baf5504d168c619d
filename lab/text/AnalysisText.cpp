#include "lab/text/AnalysisText.h"

#include <algorithm>

#include "lab/Text.h"
#include "lab/analysis/NumberText.h"
#include "lab/csv/AnalysisCsv.h"
#include "lab/text/Table.h"

namespace vex2::lab {

namespace {

using Rows = std::vector<std::vector<std::string>>;

std::string shown(const std::optional<double>& number, int decimals) {
  return number ? DecimalsText(*number, decimals) : "";
}

std::string threeDigits(const std::optional<double>& number) {
  return number ? NumberText(*number) : "";
}

std::string percent(const std::optional<double>& part) {
  return part ? DecimalsText(*part * 100, 1) + " %" : "";
}

std::string cycles(const std::optional<CycleRange>& range) {
  return range ? NumberText(range->first) + "-" + NumberText(range->last) : "";
}

// The reason in one word; the other formats have the sentence with its numbers.
std::string shortNote(const CqResult& result) {
  if (result.reason == NoCq::kNoReadings) return result.note;
  if (result.reason) return std::string(NameOf(*result.reason));
  if (!result.estimate) return result.note;
  const std::string range =
      NumberText(result.estimate->low) + " to " + NumberText(result.estimate->high);
  return result.note.empty() ? range : range + "; " + result.note;
}

std::string wellsText(const CqAnalysis& analysis, const TextForm& form) {
  Rows rows;
  for (const CqResult& result : analysis.wells) {
    const AnalysedWell& well = result.curve.well;
    const auto fields = CqFields(result, analysis.method);
    rows.push_back({form.Printable(well.plate), well.name, form.Printable(well.sample),
                    form.Printable(well.detector), form.Printable(well.task), fields[4],
                    shown(result.cq, 2), cycles(result.baseline),
                    form.Printable(shortNote(result))});
  }
  return DrawTable(
      {"plate", "well", "sample", "detector", "task", "quantity", "Cq", "baseline", "note"}, rows,
      form, {5, 6});
}

std::string detectorsText(const CqAnalysis& analysis, const TextForm& form) {
  Rows rows;
  for (const DetectorResult& detector : analysis.detectors) {
    std::vector<std::string> row = {
        form.Printable(detector.name), threeDigits(detector.threshold), "", "", "", "", "", ""};
    if (detector.isThresholdAutomatic && detector.threshold) row[1] += " (auto)";
    if (const auto& curve = detector.curve) {
      row[2] = std::to_string(curve->wells);
      row[3] = shown(curve->slope, 3);
      row[4] = percent(curve->efficiency);
      row[5] = shown(curve->rSquared, 3);
      row[6] = shown(curve->rSquaredOfMeans, 3);
      row[7] = threeDigits(curve->limitOfDetection);
    }
    rows.push_back(std::move(row));
  }
  return '\n' + DrawTable({"detector", "threshold", "standards", "slope", "efficiency", "r2",
                           "r2 of means", "detected from"},
                          rows, form, {2, 3, 4, 5, 6, 7});
}

std::string relativeText(const CqAnalysis& analysis, const TextForm& form) {
  Rows rows;
  for (const RelativeQuantity& relative : analysis.relative) {
    const std::string range = relative.ratioLow ? threeDigits(relative.ratioLow) + " to " +
                                                      threeDigits(relative.ratioHigh)
                                                : "";
    rows.push_back({form.Printable(relative.sample), form.Printable(relative.detector),
                    shown(relative.deltaCq, 2), shown(relative.deviation, 2),
                    shown(relative.deltaDeltaCq, 2), threeDigits(relative.ratio), range,
                    threeDigits(relative.correctedRatio)});
  }
  if (rows.empty()) return {};
  return '\n' + DrawTable({"sample", "detector", "delta Cq", "deviation", "delta delta Cq", "ratio",
                           "range", "by efficiency"},
                          rows, form, {2, 3, 4, 5, 7});
}

std::string findingsText(const CqAnalysis& analysis, const TextForm& form) {
  if (analysis.findings.empty()) return {};
  std::string text = '\n' + Counted(analysis.findings.size(), "finding") + '\n';
  constexpr std::string_view kIndent = "  ";
  for (const QualityFinding& finding : analysis.findings) {
    text += std::string(kIndent) + form.Wrapped(form.Printable(finding.text), 2 * kIndent.size()) +
            '\n';
  }
  return text;
}

}  // namespace

std::string CqText(const CqAnalysis& analysis, const TextForm& form) {
  return wellsText(analysis, form) + detectorsText(analysis, form) + relativeText(analysis, form) +
         findingsText(analysis, form);
}

std::string MeltText(const std::vector<MeltCurve>& curves, const TextForm& form) {
  Rows rows;
  for (const MeltCurve& curve : curves) {
    const AnalysedWell& well = curve.well;
    const std::vector<std::string> place = {form.Printable(well.plate), well.name,
                                            form.Printable(well.sample),
                                            form.Printable(well.detector)};
    for (std::size_t i = 0; i < std::max<std::size_t>(curve.peaks.size(), 1); ++i) {
      auto& row = rows.emplace_back(i == 0 ? place : std::vector<std::string>(place.size()));
      if (curve.peaks.empty()) {
        row.insert(row.end(), {curve.readings.empty() ? "no readings" : "none", "", ""});
        continue;
      }
      const MeltPeak& peak = curve.peaks[i];
      row.insert(row.end(), {DecimalsText(peak.temperature, 2), NumberText(peak.height),
                             DecimalsText(peak.width, 2)});
    }
  }
  return DrawTable({"plate", "well", "sample", "detector", "peak (C)", "height", "width (C)"}, rows,
                   form, {4, 5, 6});
}

}  // namespace vex2::lab
