#include "lab/model/DocumentOverview.h"

#include <algorithm>
#include <bit>

#include "lab/Text.h"
#include "lab/model/DataBlock.h"
#include "lab/model/RunLog.h"
#include "lab/model/Settings.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::lab {

namespace {

template <std::size_t size>
std::string textOf(const char (&characters)[size]) {
  std::string text = ToUtf8({characters, size});
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

std::size_t wellsInUse(const Vex2HeaderData& header) {
  std::size_t count = 0;
  for (unsigned row = 0; row < header.rows && header.usage != nullptr; ++row) {
    count += static_cast<std::size_t>(std::popcount(header.usage[row]));
  }
  return count;
}

// The recorder alone says what its times mean; their zone is in its log.
std::optional<std::string> timeOf(const TimeStamp& time, const std::optional<RunLog>& log) {
  auto text = log ? TimeText(time) : std::nullopt;
  if (text && log->started) *text += log->started->Zone();
  return text;
}

BlockOverview overviewOf(const AcquisitionDataComp& block, const Vex2FileManager& content) {
  const auto log = RecordedReadings(content, block.GetTag()).Log();
  return {.tag = std::string(block.GetTag()),
          .version = block.GetVersion(),
          .wells = block.GetWellCount(),
          .frames = block.GetFrameCount(),
          .isRecorded = log.has_value(),
          .start = timeOf(block.GetStartTime(), log),
          .end = timeOf(block.GetEndTime(), log),
          .storedStart = block.GetStartTime(),
          .storedEnd = block.GetEndTime()};
}

// A program's meaning is the instrument's; people can read one that is text.
std::optional<std::string> programText(const Vex2FileManager& content) {
  ThermocycleProgram program;
  if (content.GetThermocycleProgramInfo(&program) != kSuccess || program.data == nullptr) {
    return std::nullopt;
  }
  std::string bytes(reinterpret_cast<const char*>(program.data), program.length);
  const bool isText = std::all_of(bytes.begin(), bytes.end(), [](char c) {
    return (c >= ' ' && c <= '~') || c == '\n' || c == '\t';
  });
  return isText ? std::optional(std::move(bytes)) : std::nullopt;
}

void addHeader(PlateOverview& overview, const Vex2HeaderData& header) {
  overview.kind = textOf(header.kindMarker);
  overview.plateType = textOf(header.plateTypeCode);
  overview.rows = header.rows;
  overview.columns = header.columns;
  overview.wellsInUse = wellsInUse(header);
  overview.assay = textOf(header.assayCode);
  overview.run = textOf(header.runCode);
  overview.text = textOf(header.text);
  overview.status = textOf(header.acquisitionStatus);
}

void addSettings(PlateOverview& overview, const Vex2FileManager& content) {
  for (const Setting& setting : Settings()) {
    if (setting.isInHeader) continue;
    Value value = setting.get(content);
    if (HasValue(value)) overview.settings.emplace_back(setting.key, std::move(value));
  }
}

void addComponents(PlateOverview& overview, const Vex2FileManager& content) {
  overview.frames = content.GetDataFrameCount(DataRAWa);
  for (int i = 0; i < content.GetAllComponentCount(); ++i) {
    const CComponent* component = content.GetComponent(i);
    if (const auto* block = dynamic_cast<const AcquisitionDataComp*>(component)) {
      overview.blocks.push_back(overviewOf(*block, content));
      if (block->GetTag() != TagOf(Kind::kRawData)) continue;
      overview.start = overview.blocks.back().start;
      overview.end = overview.blocks.back().end;
    } else if (component->GetTag() == TagOf(Kind::kProgram) && !overview.programSize) {
      overview.programSize = component->GetLength();
    }
  }
  overview.programText = programText(content);
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
  overview.modified = ToUtf8(plate.date);
  overview.offset = plate.offset;
  overview.size = plate.end - plate.offset;
  addHeader(overview, plate.content->GetHeaderData());
  addSettings(overview, *plate.content);
  addComponents(overview, *plate.content);
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
