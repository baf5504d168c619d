#include "lab/model/DocumentOverview.h"

#include <bit>

#include "lab/Text.h"
#include "lab/model/Codes.h"
#include "lab/model/PlateContents.h"
#include "lab/model/Study.h"
#include "lab/model/ValuesFromDocument.h"
#include "vex2/run/ThermocycleProgramComp.h"

namespace vex2::lab {

namespace {

std::size_t wellsInUse(const Vex2HeaderData& header) {
  std::size_t count = 0;
  for (unsigned row = 0; row < header.rows && header.usage != nullptr; ++row) {
    count += static_cast<std::size_t>(std::popcount(header.usage[row]));
  }
  return count;
}

void addHeader(PlateOverview& overview, const Vex2HeaderData& header) {
  overview.kind = CodeText(header.kindMarker);
  overview.plateType = CodeText(header.plateTypeCode);
  overview.rows = header.rows;
  overview.columns = header.columns;
  overview.wellsInUse = wellsInUse(header);
  overview.assay = CodeText(header.assayCode);
  overview.run = CodeText(header.runCode);
  overview.text = CodeText(header.text);
  overview.status = CodeText(header.acquisitionStatus);
}

void addContent(PlateOverview& overview, const Document::Plate& plate) {
  const Vex2FileManager& content = *plate.content;
  overview.settings = SettingValuesOf(content);
  overview.blocks = BlocksOf(plate);
  overview.frames = content.GetDataFrameCount(DataRAWa);
  for (const BlockInfo& block : overview.blocks) {
    if (block.tag != kRawReadings) continue;
    overview.start = block.start;
    overview.end = block.end;
  }
  const std::optional<Program> program = ProgramOf(content);
  if (program && !program->bytes.empty()) overview.programText = program->text;
  if (const auto* component = content.GetThermocycleProgComp()) {
    overview.programSize = component->GetLength();
  }
}

std::vector<FileFault> faultsOf(const Document& document) {
  std::vector<FileFault> faults;
  if (const auto& fault = document.Fault()) faults.push_back(*fault);
  for (const Document::Loss& loss : document.Losses()) faults.push_back({loss.offset, loss.what});
  return faults;
}

}  // namespace

PlateOverview OverviewOf(const Document::Plate& plate) {
  PlateOverview overview;
  overview.isEmbedded = plate.isEmbedded;
  overview.name = ToUtf8(plate.name);
  overview.wellCount = LayoutOf(*plate.content).WellCount();
  overview.modified = PlateDateText(ToUtf8(plate.date));
  overview.offset = plate.offset;
  overview.size = plate.end - plate.offset;
  addHeader(overview, plate.content->GetHeaderData());
  addContent(overview, plate);
  overview.records = plate.records;
  for (Document::Record& record : overview.records) record.tag = ToUtf8(record.tag);
  return overview;
}

DocumentOverview OverviewOf(const Document& document, const Document::Plate& plate) {
  DocumentOverview overview;
  overview.path = document.Path();
  overview.plate = OverviewOf(plate);
  overview.isWhole = !document.Fault();
  if (plate.isEmbedded) return overview;
  overview.plate.size = document.Size();
  overview.faults = faultsOf(document);
  if (!document.IsStudy() && document.Plates().empty()) return overview;
  overview.plates.emplace();
  for (const Document::Plate& each : document.Plates()) {
    overview.plates->push_back(OverviewOf(each));
  }
  return overview;
}

}  // namespace vex2::lab
