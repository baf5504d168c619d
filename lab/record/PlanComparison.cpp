#include "lab/record/PlanComparison.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "lab/Text.h"
#include "lab/csv/WellsFile.h"
#include "lab/model/DetectorFields.h"
#include "lab/model/Settings.h"
#include "lab/model/StoredCalibration.h"
#include "lab/record/PlanDocument.h"

namespace vex2::lab {

namespace {

using Difference = std::optional<PlanDifference>;

Difference compareTexts(const std::string& what, const std::string& recorded,
                        const std::string& given) {
  if (recorded == given) return std::nullopt;
  return PlanDifference{what, recorded, given};
}

std::string quantityText(const WellRow& row) {
  return row.HasQuantity() ? DecimalText(row.quantity) : "";
}

Difference compareRow(const WellRow& recorded, const WellRow& given, const PlateLayout& plate) {
  const auto name = [&](const char* field) {
    return fmt::format("{} of well {}", field, plate.NameOf(given.well));
  };
  const std::array<Difference, 5> differences = {
      compareTexts(name("sample"), ToUtf8(recorded.sample), ToUtf8(given.sample)),
      compareTexts(name("target"), ToUtf8(recorded.target), ToUtf8(given.target)),
      compareTexts(name("task"), ToUtf8(recorded.task), ToUtf8(given.task)),
      compareTexts(name("quantity"), quantityText(recorded), quantityText(given)),
      compareTexts(name("reporter"), ToUtf8(recorded.reporter), ToUtf8(given.reporter))};
  const auto found = std::find_if(differences.begin(), differences.end(),
                                  [](const Difference& one) { return one.has_value(); });
  return found != differences.end() ? *found : std::nullopt;
}

Difference compareWells(const Vex2FileManager& document, const Vex2FileManager& planned) {
  const PlateContents recorded = ContentsOf(document);
  const PlateContents given = ContentsOf(planned);
  const std::size_t count = std::min(recorded.rows.size(), given.rows.size());
  for (std::size_t i = 0; i < count; ++i) {
    const WellRow& one = recorded.rows[i];
    const WellRow& other = given.rows[i];
    if (one.well != other.well) break;
    if (auto difference = compareRow(one, other, given.plate)) return difference;
  }
  // The setups differ in their wells: a well is only in one of them, or has more rows in one of
  // them.
  const auto wellAt = [&](const PlateContents& contents, std::size_t i) {
    return i < contents.rows.size() ? given.plate.NameOf(contents.rows[i].well) : std::string();
  };
  for (std::size_t i = 0; i < std::max(recorded.rows.size(), given.rows.size()); ++i) {
    if (auto difference = compareTexts(fmt::format("well in row {} of the setup", i + 1),
                                       wellAt(recorded, i), wellAt(given, i))) {
      return difference;
    }
  }
  return std::nullopt;
}

Difference compareDetectors(const Vex2FileManager& document, const Vex2FileManager& planned) {
  const auto byName = [](const Vex2FileManager& of) {
    std::vector<Vex2Detector> detectors = DetectorsOf(of);
    std::sort(detectors.begin(), detectors.end(), [](const auto& one, const auto& other) {
      return one.name.View() < other.name.View();
    });
    return detectors;
  };
  const std::vector<Vex2Detector> recorded = byName(document);
  const std::vector<Vex2Detector> given = byName(planned);
  const auto nameAt = [](const std::vector<Vex2Detector>& detectors, std::size_t i) {
    return i < detectors.size() ? ToUtf8(detectors[i].name.View()) : std::string();
  };
  for (std::size_t i = 0; i < std::max(recorded.size(), given.size()); ++i) {
    const std::string name = nameAt(given, i);
    if (nameAt(recorded, i) != name) return PlanDifference{"detector", nameAt(recorded, i), name};
    for (const DetectorField& field : DetectorFields()) {
      const std::string what = fmt::format("{} of detector {}", field.key, name);
      if (auto difference = compareTexts(what, ValueText(field.get(recorded[i])),
                                         ValueText(field.get(given[i])))) {
        return difference;
      }
    }
  }
  return std::nullopt;
}

Difference compareDyes(const Vex2FileManager& document, const Vex2FileManager& planned) {
  const auto list = [](const Vex2FileManager& of) {
    std::vector<std::string> dyes = RequiredDyesOf(of);
    std::sort(dyes.begin(), dyes.end());
    std::string text;
    for (const std::string& dye : dyes) text.append(text.empty() ? "" : ", ").append(ToUtf8(dye));
    return text;
  };
  return compareTexts("list of required dyes", list(document), list(planned));
}

Difference comparePart(const std::string& what, const std::optional<CalibrationPart>& recorded,
                       const std::optional<CalibrationPart>& given) {
  const auto nameAt = [](const std::optional<CalibrationPart>& part, std::size_t i) {
    return part && i < part->entries.size() ? part->entries[i].name : std::string();
  };
  const std::size_t count =
      std::max(recorded ? recorded->entries.size() : 0, given ? given->entries.size() : 0);
  for (std::size_t i = 0; i < count; ++i) {
    const std::string entry = fmt::format("{} in the calibration", what);
    if (auto difference = compareTexts(entry, nameAt(recorded, i), nameAt(given, i))) {
      return difference;
    }
    if (recorded->entries[i] == given->entries[i]) continue;
    return PlanDifference{fmt::format("spectrum of {}", entry),
                          fmt::format("{} with other values", nameAt(recorded, i)),
                          nameAt(given, i)};
  }
  return std::nullopt;
}

Difference compareCalibration(const Vex2FileManager& document, const Vex2FileManager& planned) {
  const Calibration recorded = CalibrationOf(document);
  const Calibration given = CalibrationOf(planned);
  if (auto difference = comparePart("pure dye", recorded.pureDyes, given.pureDyes)) {
    return difference;
  }
  return comparePart("background", recorded.background, given.background);
}

Difference compareSettings(const Vex2FileManager& document, const Vex2FileManager& planned) {
  for (const Setting& setting : Settings()) {
    if (setting.key == "log") continue;
    if (auto difference = compareTexts(std::string(setting.key), ValueText(setting.get(document)),
                                       ValueText(setting.get(planned)))) {
      return difference;
    }
  }
  return std::nullopt;
}

std::string programOf(const Vex2FileManager& document) {
  ThermocycleProgram program;
  if (document.GetThermocycleProgramInfo(&program) != kSuccess || program.data == nullptr)
    return {};
  return ToUtf8({reinterpret_cast<const char*>(program.data), program.length});
}

}  // namespace

std::optional<PlanDifference> FindDifference(const Vex2FileManager& document, const RunPlan& plan) {
  Vex2FileManager planned;
  StorePlan(planned, plan);
  for (const auto compare :
       {compareWells, compareDetectors, compareDyes, compareCalibration, compareSettings}) {
    if (auto difference = compare(document, planned)) return difference;
  }
  return plan.isLive && plan.program.empty()
             ? std::nullopt
             : compareTexts("program", programOf(document), programOf(planned));
}

}  // namespace vex2::lab
