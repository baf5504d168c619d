#include "lab/check/Check.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>

#include "lab/Guarded.h"
#include "lab/SystemError.h"
#include "lab/Text.h"
#include "lab/check/HeaderCheck.h"
#include "lab/check/MeaningCheck.h"
#include "lab/check/RecordCheck.h"
#include "lab/check/RepairPlan.h"
#include "lab/check/UncommittedCheck.h"
#include "lab/formats/ImportFormat.h"
#include "lab/model/Document.h"
#include "lab/model/RawFile.h"
#include "vex2/format/RecordKinds.h"

namespace vex2::lab {

namespace {

// A document has at most one record of each of these kinds, and readers take the first.
constexpr std::array<std::string_view, 11> kSingle = {
    TagOf(Kind::kGlobal),         TagOf(Kind::kProgram),        TagOf(Kind::kPlateSetup),
    TagOf(Kind::kCalibration),    TagOf(Kind::kRequiredDyes),   TagOf(Kind::kPlates),
    TagOf(Kind::kRawData),        TagOf(Kind::kReportingDataR), TagOf(Kind::kReportingDataN),
    TagOf(Kind::kReportingDataD), TagOf(Kind::kReportingDataT)};

constexpr const char* kRename = "take the plate out of the study, and add it under another name";

std::optional<NoDocument> whyNoDocument(const std::string& path) {
  CFile file;
  OpenToRead(file, path);
  return WhyNoDocument(file);
}

void checkDoubles(const std::vector<Document::Record>& records, const std::string& within,
                  Findings& findings) {
  for (const std::string_view tag : kSingle) {
    const auto isIt = [tag](const Document::Record& record) { return record.tag == tag; };
    auto next = std::find_if(records.begin(), records.end(), isIt);
    if (next == records.end()) continue;
    const std::uint64_t first = next->offset;
    while ((next = std::find_if(next + 1, records.end(), isIt)) != records.end()) {
      findings.Add({Severity::kWarning, within + next->tag, next->offset,
                    fmt::format("there is already a record of this kind at byte {}", first),
                    "only the first is used; this one is kept, but never read", ""});
    }
  }
}

void checkPlates(const Document& document, Findings& findings) {
  const auto& plates = document.Plates();
  for (std::size_t i = 0; i < plates.size(); ++i) {
    const std::string where = "MPLC/RQPl[" + std::to_string(i + 1) + "]";
    checkDoubles(plates[i].records, where + "/", findings);
    const auto same = [&](const Document::Plate& other) { return other.name == plates[i].name; };
    if (plates[i].name.empty()) {
      findings.Add({Severity::kWarning, where, plates[i].offset, "the plate has no name",
                    "it cannot be found by name, and two such plates cannot be distinguished",
                    kRename});
    } else if (std::any_of(plates.begin(), plates.begin() + static_cast<std::ptrdiff_t>(i), same)) {
      findings.Add(
          {Severity::kWarning, where, plates[i].offset,
           fmt::format("an earlier plate is called '{}' as well", Escaped(ToUtf8(plates[i].name))),
           "a search by name finds only the earlier one", kRename});
    }
  }
}

void checkStudy(const Document& document, Findings& findings) {
  int index = 0;
  bool hasPlates = false;
  for (const Document::Record& record : document.Records()) {
    hasPlates = hasPlates || record.tag == TagOf(Kind::kPlates);
    if (!record.known) continue;
    const CComponent* component = document.Content().GetComponent(index++);
    if (component == nullptr || record.tag == TagOf(Kind::kEndOfFile)) continue;
    if (document.Content().IsWritten(*component)) continue;
    findings.Add({Severity::kNote, record.tag, record.offset, "a study does not keep such a record",
                  "it is read, but the next save leaves it out", ""});
  }
  if (document.IsStudy() && !hasPlates) {
    findings.Add({Severity::kNote, "header", 8, "a study without a record for its plates",
                  "it has no plates", ""});
  }
  if (!document.IsStudy() && hasPlates) {
    findings.Add({Severity::kNote, "header", 8, "there are plates, but the assay is no study's",
                  "programs may not show the plates", ""});
  }
}

// Replaces the placeholders by names. Use it only for consequences and remedies: they contain no
// text of the document, which could look like a placeholder.
std::string named(std::string text, const OperationNames& names) {
  const std::array<std::pair<std::string_view, const std::string&>, 8> words = {{
      {"{repair}", names.repair},
      {"{recover}", names.recover},
      {"{import}", names.import},
      {"{resume}", names.resume},
      {"{upgrade}", names.upgrade},
      {"{read}", names.read},
      {"{setWells}", names.setWells},
      {"{setStatus}", names.setStatus},
  }};
  for (const auto& [word, name] : words) {
    for (std::size_t at = 0; (at = text.find(word, at)) != std::string::npos; at += name.size()) {
      text.replace(at, word.size(), name);
    }
  }
  return text;
}

// Each check advises a repair of the damage that it sees. If PlanRepair finds nothing that can be
// repaired safely, because there is also other damage, this replaces the advice by the
// advice to recover the document.
void requireRepairs(const std::string& path, Findings& findings) {
  const auto asksToRepair = [](const Finding& finding) {
    return finding.remedy.find("{repair}") != std::string::npos &&
           finding.remedy.find("{resume}") == std::string::npos;
  };
  if (std::none_of(findings.list.begin(), findings.list.end(), asksToRepair)) return;
  if (!PlanRepair(path).IsEmpty()) return;
  for (Finding& finding : findings.list) {
    if (asksToRepair(finding)) finding.remedy = kRecoverWhole;
  }
}

Findings checkDocument(const std::string& path) {
  Findings findings;
  if (const auto why = whyNoDocument(path)) {
    const bool isForeign = FindImportFormat(path).has_value();
    findings.Add({Severity::kError, "header", 0, why->text,
                  "it is not a plate document, and nothing of it is read",
                  isForeign ? "{import} makes a document of it"
                            : "when it was one, {recover} looks for what is left of it"});
    return findings;
  }
  const Document document(path);
  DocumentFile file;
  file.OpenDocument(path);
  const HeaderFields header = ReadHeaderFields(file, 0);
  CheckHeader(header, "header", 0, findings);
  RecordCheck records(document, header, findings);
  records.Finish(WalkRecords(file, records));
  CheckPositions(header, records.Positioned(), document, findings);
  CheckEnd(file, document, header, records, findings);
  checkDoubles(document.Records(), "", findings);
  checkPlates(document, findings);
  checkStudy(document, findings);
  CheckMeaning(document, header, findings);
  requireRepairs(path, findings);
  return findings;
}

}  // namespace

Findings Check(const std::filesystem::path& path, const OperationNames& names) {
  return Guarded(path.string(), [&] {
    Findings findings = checkDocument(path.string());
    for (Finding& finding : findings.list) {
      finding.consequence = named(std::move(finding.consequence), names);
      finding.remedy = named(std::move(finding.remedy), names);
    }
    return findings;
  });
}

}  // namespace vex2::lab
