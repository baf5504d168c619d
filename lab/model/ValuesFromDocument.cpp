#include "lab/model/ValuesFromDocument.h"

#include <algorithm>
#include <map>

#include "lab/Text.h"
#include "lab/model/DataBlock.h"
#include "lab/model/PlateContents.h"
#include "lab/model/Settings.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::lab {

namespace {

Detector valueOf(const Vex2Detector& stored) {
  Detector detector{.name = ToUtf8(stored.name.View()),
                    .reporterDye = ToUtf8(stored.reporterDye.View()),
                    .quencherDye = ToUtf8(stored.quencherDye.View()),
                    .description = ToUtf8(stored.description.View()),
                    .comment = ToUtf8(stored.comment.View()),
                    .owner = ToUtf8(stored.owner.View()),
                    .location = ToUtf8(stored.location.View()),
                    .created = stored.dateCreated,
                    .modified = stored.dateModified,
                    .baselineStart = stored.baselineStart,
                    .baselineEnd = stored.baselineEnd,
                    .threshold = stored.threshold,
                    .analysisFlags = stored.analysisFlags,
                    .autoBaseline = stored.autoBaseline != 0,
                    .autoThreshold = stored.autoThreshold != 0};
  std::copy_n(stored.color, detector.color.size(), detector.color.begin());
  return detector;
}

bool isPrintable(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(),
                     [](char c) { return (c >= ' ' && c <= '~') || c == '\n' || c == '\t'; });
}

BlockInfo infoOf(const AcquisitionDataComp& block, const std::optional<RunLog>& log) {
  const TimeStamp& start = block.GetStartTime();
  const TimeStamp& end = block.GetEndTime();
  BlockInfo info{.tag = std::string(block.GetTag()),
                 .version = block.GetVersion(),
                 .wells = {block.GetWellNumbers().begin(), block.GetWellNumbers().end()},
                 .frameCount = static_cast<std::uint64_t>(block.GetFrameCount()),
                 .isRecorded = log.has_value(),
                 .start = TimeText(start, log),
                 .end = TimeText(end, log)};
  std::copy_n(start.fields, info.storedStart.size(), info.storedStart.begin());
  std::copy_n(end.fields, info.storedEnd.size(), info.storedEnd.begin());
  return info;
}

}  // namespace

std::vector<Detector> DetectorValuesOf(const Vex2FileManager& document) {
  std::vector<Detector> detectors;
  for (const Vex2Detector& stored : DetectorsOf(document)) detectors.push_back(valueOf(stored));
  return detectors;
}

std::vector<std::string> RequiredDyeNamesOf(const Vex2FileManager& document) {
  std::vector<std::string> names = RequiredDyesOf(document);
  for (std::string& name : names) name = ToUtf8(name);
  return names;
}

std::vector<SettingValue> SettingValuesOf(const Vex2FileManager& document) {
  std::vector<SettingValue> values;
  for (const Setting& setting : Settings()) {
    if (setting.isInHeader) continue;
    Value value = setting.get(document);
    if (HasValue(value)) values.push_back({std::string(setting.key), std::move(value)});
  }
  return values;
}

std::optional<Program> ProgramOf(const Vex2FileManager& document) {
  ThermocycleProgram stored;
  if (document.GetThermocycleProgramInfo(&stored) != kSuccess) return std::nullopt;
  Program program;
  if (stored.data != nullptr) program.bytes.assign(stored.data, stored.data + stored.length);
  std::string text(program.bytes.begin(), program.bytes.end());
  if (isPrintable(text)) program.text = std::move(text);
  return program;
}

RunState RunStateOf(std::string_view status) {
  if (status == RunStatus::kNotStarted) return RunState::kNotStarted;
  if (status == RunStatus::kInProgress) return RunState::kInProgress;
  return status == RunStatus::kDone ? RunState::kDone : RunState::kOther;
}

std::vector<BlockInfo> BlocksOf(const Document::Plate& plate) {
  std::vector<BlockInfo> blocks;
  std::map<std::string_view, std::size_t> found;  // number of blocks by tag
  for (int i = 0; i < plate.content->GetAllComponentCount(); ++i) {
    const auto* block = dynamic_cast<const AcquisitionDataComp*>(plate.content->GetComponent(i));
    if (block == nullptr) continue;
    BlockInfo& info = blocks.emplace_back(
        infoOf(*block, RecordedReadings(*plate.content, block->GetTag()).Log()));
    std::size_t before = found[block->GetTag()]++;
    for (const Document::Record& record : plate.records) {
      if (record.tag != info.tag || before-- > 0) continue;
      info.offset = record.offset;
      break;
    }
  }
  return blocks;
}

std::optional<std::string> TimeText(const TimeStamp& time, const std::optional<RunLog>& log) {
  auto text = log ? TimeText(time) : std::nullopt;
  if (text && log->started) *text += log->started->Zone();
  return text;
}

FramePosition PositionOf(const RunReading& reading) {
  return {.stage = reading.melting ? Stage::kMelting : Stage::kAmplification,
          .cycle = reading.cycle,
          .temperature = static_cast<double>(reading.temperature) / kTemperatureSteps,
          .time = static_cast<double>(reading.time) / kTimeSteps};
}

}  // namespace vex2::lab
