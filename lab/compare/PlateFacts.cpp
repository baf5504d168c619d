#include "lab/compare/PlateFacts.h"

#include <algorithm>
#include <array>

#include "lab/Text.h"
#include "lab/model/DataBlock.h"
#include "lab/model/DetectorFields.h"
#include "lab/model/PlateContents.h"
#include "lab/model/Settings.h"
#include "lab/model/StoredCalibration.h"
#include "lab/model/ValuesFromDocument.h"
#include "lab/model/WellDetails.h"
#include "vex2/format/RecordKinds.h"

namespace vex2::lab {

namespace {

// Gives entries with the same name different names, by their order.
class Turns {
 public:
  std::string Name(const std::string& name) {
    const int turn = ++turns_[name];
    return turn == 1 ? name : name + " (" + std::to_string(turn) + ")";
  }

 private:
  std::map<std::string, int> turns_;
};

template <std::size_t size>
std::string codeOf(const char (&code)[size]) {
  std::string text = ToUtf8({code, size});
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

void addHeader(const Vex2FileManager& document, PlateFacts& facts) {
  const Vex2HeaderData& header = document.GetHeaderData();
  FactFields& fields = facts[{"header", ""}];
  fields["format"] = std::to_string(header.formatA) + "." + std::to_string(header.formatB);
  fields["assay"] = codeOf(header.assayCode);
  fields["run"] = codeOf(header.runCode);
  fields["plate type"] = codeOf(header.plateTypeCode);
  fields["rows"] = std::to_string(header.rows);
  fields["columns"] = std::to_string(header.columns);
  fields["flag"] = std::to_string(header.flagG);
  fields["text"] = codeOf(header.text);
  fields["kind"] = codeOf(header.kindMarker);
  fields["status"] = codeOf(header.acquisitionStatus);
  for (std::uint32_t row = 0; row < header.GetMaskCount(); ++row) {
    for (std::uint32_t column = 0; column < header.columns && column < 32; ++column) {
      const std::string name = WellName(row * header.columns + column + 1, header.columns);
      const bool isUsed = (header.usage[row] >> column & 1U) != 0;
      facts[{"wells in use", name}][""] = isUsed ? "in use" : "not in use";
    }
  }
}

void addSettings(const Vex2FileManager& document, PlateFacts& facts) {
  FactFields& fields = facts[{"settings", ""}];
  for (const SettingValue& setting : SettingValuesOf(document)) {
    fields[setting.name] = ValueText(setting.value);
  }
  const auto program = ProgramOf(document);
  if (!program) return;
  facts[{"program", ""}]["bytes"] = program->text.value_or(
      ToHex({reinterpret_cast<const char*>(program->bytes.data()), program->bytes.size()}));
}

void addWells(const Vex2FileManager& document, PlateFacts& facts) {
  for (const Well& well : PlateOf(document).wells) {
    facts[{"wells", well.name}]["sample"] = well.sample;
    Turns turns;
    for (const Target& target : well.targets) {
      // The reporter is not compared here, since it belongs to the detector.
      FactFields& fields = facts[{"wells", well.name + " " + turns.Name(target.detector)}];
      fields["task"] = target.task;
      fields["quantity"] = target.quantity ? ValueText(Value(*target.quantity)) : "none";
    }
  }
  for (const WellDetails& well : WellDetailsOf(document)) {
    FactFields& fields = facts[{"wells", well.name}];
    fields["description"] = well.description;
    fields["flag"] = well.flag ? "set" : "not set";
    std::string flags;
    for (const bool isUsed : well.detectorFlags) flags += isUsed ? '1' : '0';
    // Different numbers of detectors are found when the detectors are compared.
    if (flags.find('0') != std::string::npos) fields["flags of detectors"] = flags;
  }
}

void addDetectors(const Vex2FileManager& document, PlateFacts& facts) {
  Turns turns;
  for (const Vex2Detector& detector : DetectorsOf(document)) {
    FactFields& fields = facts[{"detectors", turns.Name(ToUtf8(detector.name.View()))}];
    for (const DetectorField& field : DetectorFields()) {
      if (field.key == "name") continue;
      fields[std::string(field.key)] = ValueText(field.get(detector));
    }
  }
  Turns dyes;
  for (const std::string& dye : RequiredDyesOf(document)) {
    facts[{"dyes", dyes.Name(ToUtf8(dye))}];
  }
}

void addPart(const std::optional<CalibrationPart>& part, const std::string& name,
             PlateFacts& facts) {
  if (!part) return;
  FactFields& head = facts[{"calibration", name}];
  head["code"] = ToHex(part->head.code);
  head["setting"] = std::to_string(part->head.setting);
  head["option"] = std::to_string(part->head.option);
  head["value"] = std::to_string(part->head.value);
  head["extra"] = ToHex(part->head.extra1) + " " + ToHex(part->head.extra2);
  Turns turns;
  for (const CalibrationEntry& entry : part->entries) {
    FactFields& fields = facts[{"calibration", name + " " + turns.Name(entry.name)}];
    fields["keys"] = std::to_string(entry.key1) + " " + std::to_string(entry.key2);
    fields["dye"] = std::to_string(entry.dyeIndex);
    fields["bytes"] = ToHex(entry.bytes);
    fields["limit"] = std::to_string(entry.limit);
    for (const std::uint16_t one : entry.params) fields["params"] += std::to_string(one) + " ";
    for (const std::uint32_t one : entry.values) {
      fields["values"] += PlainText(NumberOf(one)) + " ";
    }
  }
}

struct Covered {
  Kind kind;
  const char* section;
};

constexpr std::array kCovered = {
    Covered{Kind::kGlobal, "settings"},       Covered{Kind::kConfidence, "settings"},
    Covered{Kind::kCalibrator, "settings"},   Covered{Kind::kEndoControl, "settings"},
    Covered{Kind::kAnalysisType, "settings"}, Covered{Kind::kProgram, "program"},
    Covered{Kind::kPlateSetup, "wells"},      Covered{Kind::kDetectorList, "detectors"},
    Covered{Kind::kRequiredDyes, "dyes"},     Covered{Kind::kCalibration, "calibration"}};

}  // namespace

PlateFacts FactsOf(const Document::Plate& plate) {
  PlateFacts facts;
  const Vex2FileManager& document = *plate.content;
  addHeader(document, facts);
  addSettings(document, facts);
  addWells(document, facts);
  addDetectors(document, facts);
  const Calibration calibration = CalibrationOf(document);
  addPart(calibration.pureDyes, "pure dyes", facts);
  addPart(calibration.background, "background", facts);
  return facts;
}

std::string SectionOf(std::string_view tag) {
  const auto found = std::find_if(kCovered.begin(), kCovered.end(),
                                  [&](const Covered& one) { return TagOf(one.kind) == tag; });
  return found != kCovered.end() ? found->section : std::string();
}

}  // namespace vex2::lab
