#include "tools/vex/show/DocumentInfo.h"

#include <algorithm>
#include <bit>

#include "lab/model/DataBlock.h"
#include "lab/model/RunLog.h"
#include "lab/model/Settings.h"
#include "tools/vex/Lab.h"
#include "tools/vex/text/Text.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::tool {

namespace {

using nlohmann::ordered_json;

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
ordered_json timeOf(const TimeStamp& time, const std::optional<RunLog>& log) {
  const auto text = log ? TimeText(time) : std::nullopt;
  if (!text) return nullptr;
  return log->started ? *text + std::string(log->started->Zone()) : *text;
}

ordered_json blockInfo(const AcquisitionDataComp& block, const std::optional<RunLog>& log) {
  return {{"tag", block.GetTag()},
          {"version", block.GetVersion()},
          {"wells", block.GetWellCount()},
          {"frames", block.GetFrameCount()},
          {"recorded", log.has_value()},
          {"start", timeOf(block.GetStartTime(), log)},
          {"end", timeOf(block.GetEndTime(), log)},
          {"startBytes", block.GetStartTime().fields},
          {"endBytes", block.GetEndTime().fields}};
}

// The program as text, null when it is none: its meaning is the instrument's.
ordered_json programText(const Vex2FileManager& content) {
  ThermocycleProgram program;
  if (content.GetThermocycleProgramInfo(&program) != kSuccess || program.data == nullptr) {
    return nullptr;
  }
  const std::string_view bytes(reinterpret_cast<const char*>(program.data), program.length);
  const bool isText = std::all_of(bytes.begin(), bytes.end(), [](char c) {
    return (c >= ' ' && c <= '~') || c == '\n' || c == '\t';
  });
  return isText ? ordered_json(bytes) : ordered_json(nullptr);
}

ordered_json settingsInfo(const Vex2FileManager& document) {
  ordered_json settings = ordered_json::object();
  for (const Setting& setting : Settings()) {
    if (setting.isInHeader) continue;
    const Value value = setting.get(document);
    if (HasValue(value)) settings[std::string(setting.key)] = ToJson(value);
  }
  return settings;
}

ordered_json faultsInfo(const Document& document) {
  ordered_json faults = ordered_json::array();
  if (const auto& fault = document.Fault()) {
    faults.push_back({{"offset", fault->offset}, {"what", fault->what}});
  }
  for (const Document::Loss& loss : document.Losses()) {
    faults.push_back({{"offset", loss.offset}, {"what", loss.what}});
  }
  return faults;
}

ordered_json recordsInfo(const Document::Plate& plate) {
  ordered_json records = ordered_json::array();
  for (const Document::Record& record : plate.records) {
    records.push_back({{"tag", ToUtf8(record.tag)},
                       {"offset", record.offset},
                       {"length", record.length},
                       {"known", record.known}});
  }
  return records;
}

void addContent(ordered_json& info, const Document::Plate& plate) {
  const Vex2FileManager& content = *plate.content;
  const Vex2HeaderData& header = content.GetHeaderData();
  info["kind"] = textOf(header.kindMarker);
  info["plate"] = {{"type", textOf(header.plateTypeCode)},
                   {"rows", header.rows},
                   {"columns", header.columns},
                   {"wellsInUse", wellsInUse(header)}};
  info["assay"] = textOf(header.assayCode);
  info["run"] = textOf(header.runCode);
  info["text"] = textOf(header.text);
  info["status"] = textOf(header.acquisitionStatus);
  info["frames"] = content.GetDataFrameCount(DataRAWa);
  info["start"] = nullptr;
  info["end"] = nullptr;
  info["blocks"] = ordered_json::array();
  info["settings"] = settingsInfo(content);
  info["programSize"] = nullptr;
  info["programText"] = programText(content);
  for (int i = 0; i < content.GetAllComponentCount(); ++i) {
    const CComponent* component = content.GetComponent(i);
    if (const auto* block = dynamic_cast<const AcquisitionDataComp*>(component)) {
      const auto log = RecordedReadings(content, block->GetTag()).Log();
      info["blocks"].push_back(blockInfo(*block, log));
      if (block->GetTag() != "RAWa") continue;
      info["start"] = timeOf(block->GetStartTime(), log);
      info["end"] = timeOf(block->GetEndTime(), log);
    } else if (component->GetTag() == "TPro" && info["programSize"].is_null()) {
      info["programSize"] = component->GetLength();
    }
  }
  info["records"] = recordsInfo(plate);
}

ordered_json plateInfo(const Document::Plate& plate) {
  ordered_json info = {{"name", ToUtf8(plate.name)},
                       {"modified", ToUtf8(plate.date)},
                       {"offset", plate.offset},
                       {"size", plate.end - plate.offset}};
  addContent(info, plate);
  return info;
}

}  // namespace

ordered_json DescribeDocument(const Document& document, const Document::Plate& plate) {
  ordered_json info = {{"file", document.Path()}};
  if (plate.isEmbedded) {
    info.update(plateInfo(plate));
    return info;
  }
  info["size"] = document.Size();
  info["whole"] = !document.Fault();
  addContent(info, plate);
  info["faults"] = faultsInfo(document);
  if (!document.IsStudy() && document.Plates().empty()) return info;
  info["plates"] = ordered_json::array();
  for (const Document::Plate& each : document.Plates()) info["plates"].push_back(plateInfo(each));
  return info;
}

}  // namespace vex2::tool
