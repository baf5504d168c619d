#include "vex2/format/DataBlockHead.h"

#include "vex2/format/Encoding.h"
#include "vex2/format/ReadLimits.h"

namespace vex2 {

bool ReadDataBlockHead(CFile& file, TimeBlock rule, DataBlockHead& head) {
  if (!ReadField(file, head.version)) return false;
  if (rule == TimeBlock::kAsStated) {
    if (!ReadField(file, head.timeBlockSize)) return false;
    file.Seek(head.timeBlockSize, CFile::current);
  } else if (head.version >= kFirstVersionWithTimes) {
    if (!ReadField(file, head.timeBlockSize)) return false;
    if (!ReadExactly(file, head.times.data(), head.times.size())) return false;
  }
  return ReadField(file, head.wells);
}

bool ReadWellNumbers(CFile& file, std::uint16_t count, std::vector<std::uint16_t>& numbers) {
  if (!HasBytesLeft(file, sizeof(std::uint16_t) * std::uint64_t{count})) return ShortRead(file);
  numbers.resize(count);
  for (std::uint16_t& number : numbers) {
    if (!ReadField(file, number)) return false;
  }
  return true;
}

}  // namespace vex2
