#include "lab/model/Study.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <new>

#include "lab/SystemError.h"
#include "lab/Text.h"
#include "lab/model/PlateContents.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/manager/SplitPath.h"

namespace vex2::lab {

namespace {

constexpr std::string_view kStudyCode = Assay::kRelativeStudy.code;
constexpr std::string_view kPlateKind = KindMarker::kKestor;
// The date format of studies, which `PlateDateText` parses.
constexpr const char* kDateForm = "%b %d, %Y %I:%M %p";

[[noreturn]] void refuse(const Document& plate, const std::string& why,
                         ErrorRemedy remedy = ErrorRemedy::kNone) {
  throw Error(ErrorCode::kDocument, plate.Path(), why, std::nullopt, remedy);
}

// A plate is named after its file. SplitPath finds the name of the file only in an absolute path.
CString wholePath(const std::string& path) {
  const std::string whole = std::filesystem::absolute(path).lexically_normal().string();
  const auto latin1 = ToLatin1(whole);
  return CString(std::string_view(latin1 ? *latin1 : whole));
}

CString plateName(const Document& plate, const CString& path) {
  CString folder;
  CString name;
  CString extension;
  if (!SplitPath(path, folder, name, extension) || name.IsEmpty()) {
    refuse(plate,
           "a plate is named after its file, whose name needs an extension, as in plate1.vex");
  }
  return name;
}

void requirePlate(const Document& plate) {
  const Vex2HeaderData& header = plate.Content().GetHeaderData();
  const std::string_view kind(header.kindMarker, sizeof header.kindMarker);
  if (kind != kPlateKind) {
    refuse(plate,
           fmt::format("its kind is '{}'; the plates of a study are of kind 'Kest'", ToUtf8(kind)));
  }
  if (plate.IsStudy() || !plate.Plates().empty()) {
    refuse(plate, "this is a study itself", ErrorRemedy::kExtractPlate);
  }
}

// The study takes the type of its first plate, but has no run of its own.
void beginStudy(Vex2FileManager& study, const Vex2HeaderData& plate) {
  Vex2HeaderData header(plate);
  kStudyCode.copy(header.assayCode, sizeof header.assayCode);
  std::fill(std::begin(header.text), std::end(header.text), ' ');
  RunStatus::kNotStarted.copy(header.acquisitionStatus, sizeof header.acquisitionStatus);
  header.thermocycleOffset = 0;
  header.acquisitionDataOffset = 0;
  study.SetHeaderData(header);
}

std::string wells(int size) {
  return size > 0 ? Counted(static_cast<unsigned>(size), "well") : "a size of its own";
}

bool hasName(const Vex2FileManager& study, const CString& name) {
  CStringList names;
  CStringList dates;
  study.GetMultiPlateList(names, dates);
  for (POSITION at = names.GetHeadPosition(); at != nullptr;) {
    if (names.GetNext(at) == name) return true;
  }
  return false;
}

// The path of a file with this name. Separators in the name are replaced, since they would begin a
// folder.
CString fileName(std::string name) {
  std::replace_if(
      name.begin(), name.end(), [](char c) { return c == '/' || c == '\\'; }, '-');
  const auto latin1 = ToLatin1(name);
  return CString(std::string_view("/plates/" + (latin1 ? *latin1 : name) + ".vex"));
}

std::string add(Vex2FileManager& study, Document& plate) {
  DocumentFile& content = plate.Content();
  const CString path = wholePath(plate.Path());
  const CString name = plateName(plate, path);
  const std::string shown = Escaped(ToUtf8(name.View()));
  if (content.GetPlateSize() != study.GetPlateSize()) {
    refuse(plate, fmt::format("a plate of {} cannot be in a study of plates of {}",
                              wells(content.GetPlateSize()), wells(study.GetPlateSize())));
  }
  content.SetFilePath(path.GetString());
  if (!study.AddRQPlate(&content, plate.Modified().Format(kDateForm))) {
    if (!hasName(study, name)) throw std::bad_alloc();
    refuse(plate, fmt::format("the study has a plate '{}' already", shown));
  }
  return fmt::format("+ {}: {}, {}\n", shown, wells(content.GetPlateSize()),
                     Counted(static_cast<unsigned>(content.GetDataFrameCount(DataRAWa)), "frame"));
}

}  // namespace

std::string AddPlates(Vex2FileManager& study, const std::string& studyPath,
                      const std::vector<std::string>& paths, const SaveRules& rules,
                      const std::function<void(const std::string& path)>& onPlate) {
  const bool isNew = !study.IsRQS();
  // Registers the names of the plates. Without this, a study that was just read would accept a
  // plate with a name that it already has.
  study.SyncPlatesWithAnalysisStorageMap();
  std::string report;
  for (const std::string& path : paths) {
    onPlate(path);
    Document plate(path);
    requirePlate(plate);
    PrepareToSave(plate, studyPath, rules);
    if (isNew && report.empty()) beginStudy(study, plate.Content().GetHeaderData());
    report += add(study, plate);
  }
  return report;
}

void AddMadePlate(Vex2FileManager& study, DocumentFile& plate, const std::string& name,
                  const std::string& modified) {
  if (!study.IsRQS()) beginStudy(study, plate.GetHeaderData());
  if (plate.GetPlateSize() != study.GetPlateSize()) {
    throw Error(ErrorCode::kDocument, "the plate '" + name + "' of " + wells(plate.GetPlateSize()) +
                                          " cannot be in a study of plates of " +
                                          wells(study.GetPlateSize()));
  }
  plate.SetFilePath(fileName(name).GetString());
  const CString date = modified.empty() ? CTime::GetCurrentTime().Format(kDateForm)
                                        : CString(std::string_view(modified));
  if (study.AddRQPlate(&plate, date)) return;
  throw Error(ErrorCode::kDocument, "the study cannot hold the plate '" + name + "'");
}

void ExtractPlate(const Document& study, const Document::Plate& plate, const std::string& target,
                  const SaveRules& rules) {
  PreparePlateToSave(study, plate, target, rules);
  DocumentFile single(*plate.content);
  SaveDocument(single, target);
}

std::string PlateDateText(const std::string& stored) {
  constexpr std::string_view kMonths = "JanFebMarAprMayJunJulAugSepOctNovDec";
  std::array<char, 4> name{};
  std::array<char, 3> half{};
  unsigned day = 0;
  unsigned year = 0;
  unsigned hour = 0;
  unsigned minute = 0;
  int length = 0;
  const int fields = std::sscanf(stored.c_str(), "%3[A-Za-z] %2u, %4u %2u:%2u %1[AP]M%n",
                                 name.data(), &day, &year, &hour, &minute, half.data(), &length);
  const std::size_t month = kMonths.find(name.data());
  const bool isDate = fields == 6 && static_cast<std::size_t>(length) == stored.size() &&
                      name[2] != 0 && month < kMonths.size() && month % 3 == 0 && day >= 1 &&
                      day <= 31 && hour >= 1 && hour <= 12 && minute < 60;
  if (!isDate) return stored;
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%04u-%02zu-%02uT%02u:%02u", year, month / 3 + 1, day,
                hour % 12 + (half[0] == 'P' ? 12 : 0), minute);
  return text.data();
}

void RequireStudy(const Document& document) {
  if (document.IsStudy()) return;
  throw Error(ErrorCode::kDocument, document.Path(),
              "this is not a study but a document of one plate", std::nullopt,
              ErrorRemedy::kMakeStudy);
}

std::vector<StudyPlate> StudyPlatesOf(const Document& document) {
  RequireStudy(document);
  std::vector<StudyPlate> plates;
  for (const Document::Plate& plate : document.Plates()) {
    const Vex2FileManager& content = *plate.content;
    plates.push_back({.name = ToUtf8(plate.name),
                      .modified = PlateDateText(ToUtf8(plate.date)),
                      .wells = LayoutOf(content).WellCount(),
                      .frames = content.GetDataFrameCount(DataRAWa),
                      .status = ToUtf8(content.GetAcquisitionStatus().View()),
                      .offset = plate.offset,
                      .size = plate.end - plate.offset});
  }
  return plates;
}

}  // namespace vex2::lab
