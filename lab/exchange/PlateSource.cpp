#include "lab/exchange/PlateSource.h"

#include <algorithm>
#include <set>

#include "lab/Text.h"
#include "lab/model/DataBlock.h"
#include "lab/model/DetectorFields.h"
#include "lab/model/DocumentPlates.h"
#include "lab/model/PlateContents.h"
#include "lab/model/Settings.h"
#include "lab/model/StoredCalibration.h"
#include "lab/model/ValuesFromDocument.h"
#include "lab/model/WellDetails.h"
#include "lab/record/ReadingRows.h"
#include "vex2/format/DataBlockHead.h"
#include "vex2/format/HeaderLayout.h"

namespace vex2::lab {

namespace {

// Kinds of records that the tables of samples, targets and readings hold, or that the functions
// below list.
constexpr std::array kTabledKinds = {
    Kind::kGlobal,       Kind::kProgram,     Kind::kPlateSetup,   Kind::kRawData,
    Kind::kDetectorList, Kind::kCalibration, Kind::kRequiredDyes, Kind::kConfidence,
    Kind::kCalibrator,   Kind::kEndoControl, Kind::kAnalysisType, Kind::kPlates,
    Kind::kPlateName,    Kind::kPlateDate,   Kind::kEndOfPlate,   Kind::kEndOfFile};

std::string quoted(const std::string& text) {
  return "'" + text + "'";
}

void listRecords(const Document::Plate& plate, Losses& losses) {
  std::set<std::string> seen;
  for (const Document::Record& record : plate.records) {
    const bool isFirst = seen.insert(record.tag).second;
    const bool isTabled = std::any_of(kTabledKinds.begin(), kTabledKinds.end(),
                                      [&](Kind kind) { return TagOf(kind) == record.tag; });
    const bool isBlock =
        std::find(kDataBlockTags.begin(), kDataBlockTags.end(), record.tag) != kDataBlockTags.end();
    if ((isTabled && isFirst) || isBlock) continue;
    losses.Add(isTabled ? "further records of a kind" : "records of other kinds",
               quoted(record.tag) + " at byte " + std::to_string(record.offset));
  }
}

void listBlocks(const Document::Plate& plate, const PlateSource& source, Losses& losses) {
  for (int i = 0; i < plate.content->GetAllComponentCount(); ++i) {
    const auto* block = dynamic_cast<const AcquisitionDataComp*>(plate.content->GetComponent(i));
    if (block == nullptr) continue;
    const bool isEmpty = block->GetFrameCount() == 0;
    if (isEmpty) losses.Add("data blocks without frames", std::string(block->GetTag()));
    if (isEmpty || block == source.raw) continue;
    const auto count = static_cast<std::uint64_t>(block->GetFrameCount()) * block->GetWellCount();
    losses.Add("records of further data blocks", "block " + std::string(block->GetTag()), count);
  }
}

// Lists the fields in the head of the data block that an import would set to other values.
void listBlockHead(const PlateSource& source, Losses& losses) {
  if (source.Log() == nullptr) return;
  const auto isSet = [](const TimeStamp& time) {
    return std::any_of(std::begin(time.fields), std::end(time.fields),
                       [](auto field) { return field != 0; });
  };
  if (!source.start && (isSet(source.raw->GetStartTime()) || isSet(source.raw->GetEndTime()))) {
    losses.Add("starts and ends of data blocks without a time zone", "block RAWa");
  }
  if (source.raw->GetVersion() != kBlockVersion) {
    losses.Add("versions of data blocks", std::to_string(source.raw->GetVersion()));
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

// Lists the header's fields that tables do not have, if they differ from those of a new document.
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
  const PlateLayout layout = LayoutOf(document);
  const std::string_view type = layout.TypeCode();
  if (std::string_view(header.plateTypeCode, sizeof header.plateTypeCode) != type) {
    losses.Add("fields of headers",
               "plate type " + quoted(ToUtf8({header.plateTypeCode, sizeof header.plateTypeCode})));
  }
  if (header.rows != layout.rows || header.columns != layout.columns) {
    losses.Add("fields of headers", std::to_string(header.rows) + " rows and " +
                                        std::to_string(header.columns) + " columns");
  }
  const bool hasUsualNumbers = header.formatA == fresh.formatA && header.formatB == fresh.formatB &&
                               header.flagG == fresh.flagG;
  if (!hasUsualNumbers) losses.Add("fields of headers", "format or flag");
}

// Lists the wells that either the header or an import marks as used, but not both. An import marks
// the wells with readings. If there are none, it marks those in the setup, and if there are none
// either, all wells.
void listWellsInUse(const Vex2FileManager& document, const PlateSource& source, Losses& losses) {
  const Vex2HeaderData& header = document.GetHeaderData();
  std::set<std::uint32_t> used;
  if (source.Log() != nullptr && source.raw->GetFrameCount() > 0) {
    for (const std::uint16_t well : source.raw->GetWellNumbers()) used.insert(well);
  } else {
    for (const Well& well : source.plate.wells) {
      if (!well.sample.empty() || !well.targets.empty()) used.insert(well.number);
    }
  }
  const std::uint32_t columns = std::min<std::uint32_t>(header.columns, 32);
  for (std::uint32_t row = 0; row < header.GetMaskCount(); ++row) {
    for (std::uint32_t column = 0; column < columns; ++column) {
      const std::uint32_t well = row * header.columns + column + 1;
      const bool isMarked = (header.usage[row] >> column & 1U) != 0;
      if (isMarked == (used.empty() || used.contains(well))) continue;
      losses.Add("marks of wells in use",
                 WellName(well, header.columns) + (isMarked ? " is marked" : " is not marked"));
    }
  }
}

// Lists descriptions and flags of wells, which the type Plate does not have.
void listWells(const Vex2FileManager& document, const PlateSource& source, Losses& losses) {
  const std::vector<WellDetails> wells = WellDetailsOf(document);
  if (source.hasSetup && wells.size() != LayoutOf(document).WellCount()) {
    losses.AddChanged("plate setups of other wells than the plate has",
                      Counted(wells.size(), "well"));
  }
  for (const WellDetails& well : wells) {
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
  source.hasSetup = content.GetPlateSetupComp() != nullptr;
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
  listBlockHead(source, losses);
  listWells(*plate.content, source, losses);
  listWellsInUse(*plate.content, source, losses);
  const std::string status = ToUtf8(plate.content->GetAcquisitionStatus().View());
  const bool hasFrames = source.Log() != nullptr && source.raw->GetFrameCount() > 0;
  const std::string_view expected = hasFrames ? RunStatus::kDone : RunStatus::kNotStarted;
  if (status != expected) losses.Add("statuses of runs", quoted(status));
}

void ListBesidePlates(const Document& document, Losses& losses) {
  losses.Add("uncommitted bytes", "behind byte " + std::to_string(document.RecordsEnd()),
             document.Size() - document.RecordsEnd());
  if (!document.IsStudy()) {
    for (const Document::Plate& plate : document.Plates()) {
      losses.Add("plates in a document that is not a study", quoted(ToUtf8(plate.name)));
    }
    return;
  }
  const Document::Plate study = document.Itself();
  listHeader(*study.content, losses);
  listRecords(study, losses);
  listDetectors(*study.content, losses);
  listCalibration(*study.content, losses);
  for (const SettingValue& setting : SettingValuesOf(*study.content)) {
    losses.Add("settings of studies", setting.name + " " + ValueText(setting.value));
  }
  const PlateSource source = SourceOf(study);
  const std::size_t values =
      source.plate.wells.size() + source.detectors.size() + source.dyes.size();
  losses.Add("wells, detectors and dyes of studies", document.Path(), values);
}

std::string ReadingName(const PlateSource& source, std::uint16_t well, const RunReading& reading) {
  return WellName(well, source.plate.columns) + " " + FrameName(reading.melting, reading.cycle);
}

}  // namespace vex2::lab
