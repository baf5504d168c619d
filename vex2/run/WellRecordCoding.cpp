#include "vex2/run/WellRecordCoding.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "vex2/container/Status.h"
#include "vex2/format/StoredRecords.h"

namespace vex2 {
namespace {

constexpr std::size_t kStoredBytes = kStoredDataValues * sizeof(std::uint16_t);

void encode(const Vex2WellRecord* records, std::uint8_t* bytes, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i, bytes += kStoredRecordSize) {
    std::array<std::uint16_t, kStoredLeadingValues + kStoredDataValues> stored;
    SwapValues<kStoredLeadingValues>(records[i].leading, stored.data());
    SwapValues<kStoredDataValues>(records[i].data, stored.data() + kStoredLeadingValues);
    std::memcpy(bytes, stored.data(), kStoredRecordSize);
  }
}

}  // namespace

int ReadWellRecords(CFile& file, Vex2WellRecord* records, std::size_t count) {
  const bool isRead = ReadStoredRecords(file, count, [&](const std::uint8_t* bytes) {
    LoadStoredRecord(bytes, records->leading, records->data);
    std::memset(records->data + kStoredDataValues, 0, sizeof records->data - kStoredBytes);
    ++records;
  });
  return isRead ? kSuccess : kReadFailed;
}

void WriteWellRecords(CFile& file, const Vex2WellRecord* records, std::size_t count) {
  constexpr std::size_t kChunk = 64;
  std::array<std::uint8_t, kChunk * kStoredRecordSize> bytes{};
  while (count > 0) {
    const std::size_t some = std::min(count, kChunk);
    if (records != nullptr) {
      encode(records, bytes.data(), some);
      records += some;
    }
    file.Write(bytes.data(), some * kStoredRecordSize);
    count -= some;
  }
}

}  // namespace vex2
