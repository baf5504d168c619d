#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "lab/model/DocumentWalk.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/run/TimeStamp.h"
#include "vex2/run/Vex2DataType.h"

namespace vex2::lab {

/// The tags of data blocks, the raw readings first.
inline constexpr std::array kDataBlockTags = {
    TagOf(Kind::kRawData), TagOf(Kind::kReportingDataR), TagOf(Kind::kReportingDataN),
    TagOf(Kind::kReportingDataD), TagOf(Kind::kReportingDataT)};

/// The head of a data block in a file: all of it before the frames.
struct StoredBlock {
  std::uint16_t version = 2;
  std::uint16_t timeBlockSize = 0;
  TimeStamp start;
  TimeStamp end;
  std::vector<std::uint16_t> wells;  ///< well numbers, in the order of the records in a frame
  std::uint64_t frameSize = 0;       ///< size of a frame in bytes
  std::uint64_t frameCount = 0;      ///< number of frames, calculated from the length of the block
  std::uint64_t firstFrame = 0;      ///< offset of the first frame in the file
};

/// Reads the head of the block whose record begins at `record.offset`. Returns nothing if the file
/// ends within the head.
std::optional<StoredBlock> ReadStoredBlock(CFile& file, const FileRecord& record);

/// The library's type for `tag`, which must be the tag of a data block.
Vex2DataType BlockType(std::string_view tag);

/// The text of a time stamp as the recorder writes it, in the form "2026-11-22T08:00:00": year 0 to
/// 99 (after 2000), month, day, hour, minute, second. If the fields are not such a time, the text
/// is the six numbers; if all are 0, returns nothing.
std::optional<std::string> TimeText(const TimeStamp& time);

}  // namespace vex2::lab
