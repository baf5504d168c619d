#include "lab/text/SetupText.h"

#include <fmt/core.h>

#include <algorithm>
#include <map>
#include <set>

#include "lab/Text.h"
#include "lab/csv/WellsFile.h"
#include "lab/model/DetectorFields.h"
#include "lab/model/StoredCalibration.h"
#include "lab/text/Chart.h"
#include "lab/text/PlateGrid.h"
#include "lab/text/Table.h"

namespace vex2::lab {

namespace {

using Row = std::vector<std::string>;

Row spectrumRow(const CalibrationEntry& entry, const std::string& part, const TextForm& form) {
  const std::vector<double> numbers = NumbersOf(entry);
  const auto [least, most] = std::minmax_element(numbers.begin(), numbers.end());
  const bool hasAny = !numbers.empty();
  return {part,
          form.Printable(entry.name),
          std::to_string(entry.dyeIndex),
          std::to_string(numbers.size()),
          hasAny ? std::to_string(most - numbers.begin() + 1) : "",
          hasAny ? ShortNumber(*least) : "",
          hasAny ? ShortNumber(*most) : "",
          Sparkline(numbers, form)};
}

// The fields that users look for first. The other formats have the rest.
Row detectorRow(const Vex2Detector& detector, const TextForm& form) {
  const auto shown = [&](const CString& text) { return form.Printable(ToUtf8(text.View())); };
  const auto automatic = [](std::int32_t on) { return on != 0 ? "auto " : ""; };
  const auto defaulted = DefaultedFields(detector);
  const auto mark = [&](std::initializer_list<std::string_view> keys) {
    return std::all_of(keys.begin(), keys.end(),
                       [&](std::string_view key) {
                         return std::find(defaulted.begin(), defaulted.end(), key) !=
                                defaulted.end();
                       })
               ? " (default)"
               : "";
  };
  const auto* color = reinterpret_cast<const char*>(detector.color);
  return {shown(detector.name),
          shown(detector.reporterDye),
          shown(detector.quencherDye),
          "#" + ToHex({color, sizeof detector.color}),
          fmt::format("{}{}-{}{}", automatic(detector.autoBaseline), detector.baselineStart,
                      detector.baselineEnd, mark({"baseline-start", "baseline-end"})),
          fmt::format("{}{}{}", automatic(detector.autoThreshold), DecimalText(detector.threshold),
                      mark({"threshold"})),
          shown(detector.description),
          shown(detector.comment)};
}

const std::string& fieldOf(const WellRow& row, WellField field) {
  if (field == WellField::kSample) return row.sample;
  return field == WellField::kTask ? row.task : row.target;
}

// One text for each well. If a well has several rows, their texts are joined.
std::vector<std::string> wellTexts(const PlateContents& contents, WellField field,
                                   const TextForm& form) {
  std::vector<std::string> texts(contents.plate.WellCount());
  std::map<unsigned, std::set<std::string>> said;
  for (const WellRow& row : contents.rows) {
    const std::string text = form.Printable(ToUtf8(fieldOf(row, field)));
    if (row.well > texts.size() || text.empty() || !said[row.well].insert(text).second) continue;
    std::string& shown = texts[row.well - 1U];
    shown += (shown.empty() ? "" : "+") + text;
  }
  return texts;
}

}  // namespace

std::string CalibrationText(const Calibration& calibration, const TextForm& form) {
  std::vector<Row> rows;
  const auto add = [&](const std::optional<CalibrationPart>& part, const std::string& name) {
    if (!part) return;
    for (const CalibrationEntry& entry : part->entries) {
      rows.push_back(spectrumRow(entry, name, form));
    }
  };
  add(calibration.pureDyes, "pure dye");
  add(calibration.background, "background");
  if (!rows.empty()) {
    return DrawTable({"part", "name", "index", "filters", "peak", "least", "most", "spectrum"},
                     rows, form);
  }
  return calibration.IsEmpty() ? "no calibration\n" : "a calibration without spectra\n";
}

std::string DetectorsText(const std::vector<Vex2Detector>& detectors, const TextForm& form) {
  if (detectors.empty()) return "no detectors\n";
  std::vector<Row> rows;
  for (const Vex2Detector& detector : detectors) rows.push_back(detectorRow(detector, form));
  return DrawTable(
      {"name", "reporter", "quencher", "color", "baseline", "threshold", "description", "comment"},
      rows, form);
}

std::string WellsText(const PlateContents& contents, WellField field, const std::string& name,
                      const TextForm& form) {
  const std::string title =
      fmt::format("{} wells, {} set up, {}; each well's {}:", contents.plate.WellCount(),
                  contents.Wells().size(), Counted(contents.Targets().size(), "detector"), name);
  return form.Wrapped(title, 0) + '\n' +
         DrawPlate(contents.plate, wellTexts(contents, field, form), form);
}

std::string StudyText(const std::string& path, const std::vector<StudyPlate>& plates,
                      const TextForm& form) {
  const std::string title =
      fmt::format("{}: {}\n", form.Styled(form.Printable(path), TextForm::Style::kBold),
                  Counted(plates.size(), "plate"));
  if (plates.empty()) return title;
  std::vector<Row> rows;
  for (const StudyPlate& plate : plates) {
    rows.push_back({"  " + form.Printable(plate.name), std::to_string(plate.wells),
                    std::to_string(plate.frames), form.Printable(plate.status),
                    form.Printable(plate.modified)});
  }
  return title + DrawTable({"  name", "wells", "frames", "run", "modified"}, rows, form, {1, 2});
}

}  // namespace vex2::lab
