#include "lab/exchange/PlateSource.h"

#include <algorithm>

#include "lab/Text.h"
#include "lab/exchange/WellDetails.h"
#include "lab/model/DataBlock.h"
#include "lab/model/DetectorFields.h"
#include "lab/model/DocumentPlates.h"
#include "lab/model/PlateContents.h"
#include "lab/model/RunValues.h"
#include "lab/model/Settings.h"
#include "lab/model/StoredCalibration.h"
#include "lab/record/ReadingRows.h"
#include "vex2/format/HeaderLayout.h"

namespace vex2::lab {

namespace {

// What the tables of samples, targets and readings take from a document, or what is listed below.
constexpr std::array kTabledKinds = {
    Kind::kGlobal,       Kind::kProgram,     Kind::kPlateSetup,   Kind::kRawData,
    Kind::kDetectorList, Kind::kCalibration, Kind::kRequiredDyes, Kind::kConfidence,
    Kind::kCalibrator,   Kind::kEndoControl, Kind::kAnalysisType, Kind::kPlates,
    Kind::kPlateName,    Kind::kPlateDate,   Kind::kEndOfPlate,   Kind::kEndOfFile};

std::string quoted(const std::string& text) {
  return "'" + text + "'";
}

void listRecords(const Document::Plate& plate, Losses& losses) {
  for (const Document::Record& record : plate.records) {
    const bool isTabled = std::any_of(kTabledKinds.begin(), kTabledKinds.end(),
                                      [&](Kind kind) { return TagOf(kind) == record.tag; });
    const bool isBlock =
        std::find(kDataBlockTags.begin(), kDataBlockTags.end(), record.tag) != kDataBlockTags.end();
    if (isTabled || isBlock) continue;
    losses.Add("records of other kinds",
               quoted(record.tag) + " at byte " + std::to_string(record.offset));
  }
}

void listBlocks(const Document::Plate& plate, const PlateSource& source, Losses& losses) {
  for (int i = 0; i < plate.content->GetAllComponentCount(); ++i) {
    const auto* block = dynamic_cast<const AcquisitionDataComp*>(plate.content->GetComponent(i));
    if (block == nullptr || block == source.raw) continue;
    const auto count = static_cast<std::uint64_t>(block->GetFrameCount()) * block->GetWellCount();
    losses.Add("records of further data blocks", "block " + std::string(block->GetTag()), count);
  }
}

void listDetectors(const Vex2FileManager& document, Losses& losses) {
  const Vex2Detector fresh;
  for (const Vex2Detector& detector : DetectorsOf(document)) {
    for (const DetectorField& field : DetectorFields()) {
      const bool isTabled =
          field.key == "name" || field.key == "reporter" || field.key == "description";
      const Value value = field.get(detector);
      if (isTabled || value == field.get(fresh)) continue;
      losses.Add("settings of detectors", ToUtf8(detector.name.View()) + ": " +
                                              std::string(field.key) + " " + ValueText(value));
    }
  }
}

void listCalibration(const Vex2FileManager& document, Losses& losses) {
  const Calibration calibration = CalibrationOf(document);
  for (const auto* part : {&calibration.pureDyes, &calibration.background}) {
    if (!*part) continue;
    const bool isDyes = part == &calibration.pureDyes;
    const std::string what = isDyes ? "spectra of pure dyes" : "spectra of the background";
    if ((*part)->entries.empty()) losses.Add("heads of calibrations without spectra", what);
    for (const CalibrationEntry& entry : (*part)->entries) losses.Add(what, quoted(entry.name));
  }
}

// The header's fields that tables do not have, where they are not those of a new document.
void listHeader(const Vex2FileManager& document, Losses& losses) {
  const Vex2HeaderData& header = document.GetHeaderData();
  const Vex2HeaderData fresh;
  const auto list = [&](const char* what, const auto& value, const auto& usual) {
    if (std::equal(std::begin(value), std::end(value), std::begin(usual))) return;
    losses.Add("fields of headers",
               std::string(what) + " " + quoted(ToUtf8({std::begin(value), std::size(value)})));
  };
  list("run code", header.runCode, fresh.runCode);
  list("text", header.text, fresh.text);
  list("kind", header.kindMarker, fresh.kindMarker);
  const bool hasUsualNumbers = header.formatA == fresh.formatA && header.formatB == fresh.formatB &&
                               header.flagG == fresh.flagG;
  if (!hasUsualNumbers) losses.Add("fields of headers", "format or flag");
}

// Descriptions and flags of wells, which the values of a plate do not have.
void listWells(const Vex2FileManager& document, Losses& losses) {
  for (const WellDetails& well : WellDetailsOf(document)) {
    if (!well.description.empty()) {
      losses.Add("descriptions of wells", well.name + " " + quoted(well.description));
    }
    if (well.flag != well.isSetUp) {
      losses.Add("flags of wells", well.name + (well.flag ? " is set" : " is not set"));
    }
    for (const bool isUsed : well.detectorFlags) {
      if (!isUsed) losses.Add("flags of detectors in wells", well.name);
    }
  }
}

}  // namespace

const RunLog* PlateSource::Log() const {
  return raw != nullptr && recorded && recorded->Log() ? &*recorded->Log() : nullptr;
}

std::optional<std::size_t> PlateSource::FindPosition(std::uint16_t well) const {
  if (raw == nullptr) return std::nullopt;
  const auto wells = raw->GetWellNumbers();
  const auto found = std::find(wells.begin(), wells.end(), well);
  if (found == wells.end()) return std::nullopt;
  return static_cast<std::size_t>(found - wells.begin());
}

std::vector<std::string> PlateSource::Channels() const {
  std::vector<std::string> names;
  if (Log() != nullptr) {
    for (const std::string& channel : Log()->channels) names.push_back(ToUtf8(channel));
  }
  if (names.empty()) names.emplace_back();
  return names;
}

PlateSource SourceOf(const Document::Plate& plate) {
  const Vex2FileManager& content = *plate.content;
  PlateSource source;
  source.name = ToUtf8(plate.name);
  source.plate = PlateOf(content);
  source.detectors = DetectorValuesOf(content);
  source.dyes = RequiredDyeNamesOf(content);
  for (SettingValue& setting : SettingValuesOf(content)) {
    if (setting.name == "comment") {
      source.comment = ValueText(setting.value);
    } else if (setting.name != "log") {
      source.settings.push_back(std::move(setting));
    }
  }
  source.log = ToUtf8(LogText(content));
  const auto& code = content.GetHeaderData().assayCode;
  source.assay = ToUtf8({code, sizeof code});
  source.assay.erase(source.assay.find_last_not_of(' ') + 1);
  source.program = ProgramOf(content);
  source.raw = FindBlock(plate, kRawReadings);
  if (source.raw != nullptr) {
    source.recorded.emplace(content, kRawReadings);
    if (source.Log() != nullptr && source.Log()->started) {
      source.start = source.Log()->started->Text();
    }
  }
  return source;
}

void ListUntabled(const Document::Plate& plate, const PlateSource& source, Losses& losses) {
  listHeader(*plate.content, losses);
  listRecords(plate, losses);
  listBlocks(plate, source, losses);
  listDetectors(*plate.content, losses);
  listCalibration(*plate.content, losses);
  listWells(*plate.content, losses);
  const std::string status = ToUtf8(plate.content->GetAcquisitionStatus().View());
  const bool hasFrames = source.raw != nullptr && source.raw->GetFrameCount() > 0;
  const std::string_view expected = hasFrames ? RunStatus::kDone : RunStatus::kNotStarted;
  if (status != expected) losses.Add("statuses of runs", quoted(status));
}

std::string ReadingName(const PlateSource& source, std::uint16_t well, const RunReading& reading) {
  return WellName(well, source.plate.columns) + " " + FrameName(reading.melting, reading.cycle);
}

}  // namespace vex2::lab
