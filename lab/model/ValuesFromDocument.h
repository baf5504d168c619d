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
/// The settings that the document has, without those in its header.
std::vector<SettingValue> SettingValuesOf(const Vex2FileManager& document);
/// The thermal cycling program; nothing if the document has none.
std::optional<Program> ProgramOf(const Vex2FileManager& document);
RunState RunStateOf(std::string_view status);
/// The data blocks in their order, with their offsets in the file.
std::vector<BlockInfo> BlocksOf(const Document::Plate& plate);
/// The time as a text for users, with the zone that the log states. Returns nothing without a log,
/// since only the log says what the bytes mean.
std::optional<std::string> TimeText(const TimeStamp& time, const std::optional<RunLog>& log);
FramePosition PositionOf(const RunReading& reading);

}  // namespace vex2::lab
