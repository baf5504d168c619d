#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/model/Document.h"
#include "lab/model/Run.h"
#include "lab/model/RunLog.h"
#include "lab/model/RunReading.h"

/// Converts the content of a document in memory to the types in Run.h.
namespace vex2::lab {

std::vector<Detector> DetectorValuesOf(const Vex2FileManager& document);
std::vector<std::string> RequiredDyeNamesOf(const Vex2FileManager& document);
/// The settings that the document has, but for those that its header holds.
std::vector<SettingValue> SettingValuesOf(const Vex2FileManager& document);
/// Returns nothing if the document has no program.
std::optional<Program> ProgramOf(const Vex2FileManager& document);
RunState RunStateOf(std::string_view status);
/// The data blocks in their order, with their places in the file.
std::vector<BlockInfo> BlocksOf(const Document::Plate& plate);
/// The time as people read it, with the zone that the log states. Nothing without a log: nobody
/// else says what the bytes of a time mean.
std::optional<std::string> TimeText(const TimeStamp& time, const std::optional<RunLog>& log);
FramePosition PositionOf(const RunReading& reading);

}  // namespace vex2::lab
