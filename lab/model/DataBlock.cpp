#include "lab/model/DataBlock.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "lab/model/BigEndian.h"
#include "vex2/format/DataBlockHead.h"
#include "vex2/format/RecordKinds.h"

namespace vex2::lab {

std::optional<StoredBlock> ReadStoredBlock(CFile& file, const FileRecord& record) {
  file.Seek(static_cast<std::int64_t>(record.BodyOffset()), CFile::begin);
  vex2::DataBlockHead stored;
  StoredBlock head;
  if (!vex2::ReadDataBlockHead(file, TimeBlock::kAsWritten, stored) ||
      !ReadWellNumbers(file, stored.wells, head.wells)) {
    return std::nullopt;
  }
  head.version = stored.version;
  head.timeBlockSize = stored.timeBlockSize;
  const auto* endTime = stored.times.data() + sizeof head.start.fields;
  std::copy_n(stored.times.data(), sizeof head.start.fields, head.start.fields);
  std::copy_n(endTime, sizeof head.end.fields, head.end.fields);
  head.frameSize = FrameSize(stored.wells);
  head.frameCount = FrameCount(record.length, stored.wells);
  head.firstFrame = file.GetPosition();
  return head;
}

Vex2DataType BlockType(std::string_view tag) {
  return static_cast<Vex2DataType>(FindTagIndex(tag));
}

std::optional<std::string> TimeText(const TimeStamp& time) {
  if (time == TimeStamp{}) return std::nullopt;
  const auto& [year, month, day, hour, minute, second] = time.fields;
  std::array<char, 32> text{};
  const bool isTime = year < 100 && month >= 1 && month <= 12 && day >= 1 && day <= 31 &&
                      hour < 24 && minute < 60 && second < 60;
  std::snprintf(text.data(), text.size(),
                isTime ? "20%02u-%02u-%02uT%02u:%02u:%02u" : "%u %u %u %u %u %u", year, month, day,
                hour, minute, second);
  return std::string(text.data());
}

}  // namespace vex2::lab
