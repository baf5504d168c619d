#include "lab/model/ValuesToDocument.h"

#include <fmt/core.h>

#include <algorithm>
#include <limits>
#include <set>

#include "lab/Error.h"
#include "lab/Text.h"
#include "lab/model/Settings.h"
#include "vex2/format/HeaderLayout.h"

namespace vex2::lab {

namespace {

constexpr std::uint32_t kMostRows = HeaderLayout::kMaxRows;
constexpr std::uint32_t kMostColumns = 32;  // the number of bits in the mask of a row

[[noreturn]] void refuse(const std::string& why) {
  throw Error(ErrorCode::kInvalidValue, why);
}

void requirePlate(const Plate& plate) {
  if (plate.rows >= 1 && plate.rows <= kMostRows && plate.columns >= 1 &&
      plate.columns <= kMostColumns) {
    return;
  }
  refuse(fmt::format("a plate has 1 to {} rows and 1 to {} columns, not {} and {}", kMostRows,
                     kMostColumns, plate.rows, plate.columns));
}

std::string reporterOf(const Target& target, std::span<const Detector> detectors) {
  if (!target.reporter.empty()) return target.reporter;
  const auto found = std::find_if(detectors.begin(), detectors.end(),
                                  [&](const Detector& one) { return one.name == target.detector; });
  return found != detectors.end() ? found->reporterDye : std::string();
}

}  // namespace

std::string StoredText(std::string_view text, const std::string& what) {
  const auto stored = ToLatin1(text);
  if (stored && stored->find('\0') == std::string::npos) return *stored;
  refuse(fmt::format("the {} '{}' cannot be stored: documents hold characters of Latin-1", what,
                     text));
}

PlateContents StoredContents(const Plate& plate, std::span<const Detector> detectors) {
  requirePlate(plate);
  PlateContents contents;
  contents.plate = {plate.rows, plate.columns};
  std::set<std::uint16_t> seen;
  for (const Well& well : plate.wells) {
    if (well.number < 1 || well.number > contents.plate.WellCount()) {
      refuse(fmt::format("the plate has no well {}", well.number));
    }
    const std::string name = contents.plate.NameOf(well.number);
    if (!seen.insert(well.number).second) refuse(fmt::format("well {} is given twice", name));
    WellRow row;
    row.well = well.number;
    row.sample = StoredText(well.sample, fmt::format("sample of well {}", name));
    for (const Target& target : well.targets) {
      WellRow& detected = contents.rows.emplace_back(row);
      detected.target = StoredText(target.detector, fmt::format("detector of well {}", name));
      detected.task = StoredText(target.task, fmt::format("task of well {}", name));
      if (target.quantity) detected.quantity = *target.quantity;
      detected.reporter =
          StoredText(reporterOf(target, detectors), fmt::format("reporter dye of well {}", name));
    }
    if (well.targets.empty() && !row.sample.empty()) contents.rows.push_back(row);
  }
  std::stable_sort(contents.rows.begin(), contents.rows.end(),
                   [](const WellRow& a, const WellRow& b) { return a.well < b.well; });
  return contents;
}

Vex2Detector StoredDetector(const Detector& detector) {
  const auto text = [&](const std::string& value, const char* what) {
    return CString(StoredText(value, fmt::format("{} of a detector", what)));
  };
  Vex2Detector stored;
  stored.name = text(detector.name, "name");
  stored.reporterDye = text(detector.reporterDye, "reporter dye");
  stored.quencherDye = text(detector.quencherDye, "quencher dye");
  stored.description = text(detector.description, "description");
  stored.comment = text(detector.comment, "comment");
  stored.owner = text(detector.owner, "owner");
  stored.location = text(detector.location, "location");
  std::copy(detector.color.begin(), detector.color.end(), stored.color);
  stored.dateCreated = detector.created;
  stored.dateModified = detector.modified;
  stored.baselineStart = detector.baselineStart;
  stored.baselineEnd = detector.baselineEnd;
  stored.threshold = detector.threshold;
  stored.analysisFlags = detector.analysisFlags;
  stored.autoBaseline = detector.autoBaseline ? 1 : 0;
  stored.autoThreshold = detector.autoThreshold ? 1 : 0;
  return stored;
}

void StoreSetting(Vex2FileManager& document, const SettingValue& setting) {
  const auto& settings = Settings();
  const auto found = std::find_if(settings.begin(), settings.end(),
                                  [&](const Setting& one) { return one.key == setting.name; });
  if (found == settings.end()) {
    throw Error(ErrorCode::kUnknownSetting, fmt::format("unknown setting '{}'", setting.name));
  }
  const std::string text = ValueText(setting.value);
  if (found->set(document, text)) return;
  refuse(
      fmt::format("the setting {} cannot be '{}': it takes {}", setting.name, text, found->takes));
}

void StoreProgram(Vex2FileManager& document, std::span<const std::uint8_t> program) {
  if (program.size() > std::numeric_limits<std::uint32_t>::max()) {
    refuse("the thermal cycling program is too long");
  }
  ThermocycleProgram stored;
  stored.length = static_cast<std::uint32_t>(program.size());
  stored.Allocate();
  std::copy(program.begin(), program.end(), stored.data);
  if (document.ReplaceThermocycleProgram(&stored) == kSuccess) return;
  throw Error(ErrorCode::kSystem, "the document cannot hold the thermal cycling program");
}

}  // namespace vex2::lab
