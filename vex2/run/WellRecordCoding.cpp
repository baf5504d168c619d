#include "vex2/run/WellRecordCoding.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "vex2/container/Status.h"
#include "vex2/format/Encoding.h"

namespace vex2 {
namespace {

constexpr std::size_t kLeading = kStoredLeadingValues;
constexpr std::size_t kStoredData = kStoredDataValues;

// Plain loops of fixed length, each of which the compiler turns into a few vector instructions.
template <std::size_t Count>
inline void swapValues(const std::uint16_t* in, std::uint16_t* out) {
  for (std::size_t i = 0; i < Count; ++i) {
    out[i] = static_cast<std::uint16_t>(in[i] << 8U | in[i] >> 8U);
  }
}

// The host's byte order is little-endian wherever the library runs.
static_assert(std::endian::native == std::endian::little);

void decode(const std::uint8_t* bytes, Vex2WellRecord* records, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i, bytes += kStoredRecordSize) {
    std::array<std::uint16_t, kLeading + kStoredData> stored;
    std::memcpy(stored.data(), bytes, kStoredRecordSize);
    swapValues<kLeading>(stored.data(), records[i].leading);
    swapValues<kStoredData>(stored.data() + kLeading, records[i].data);
    std::memset(records[i].data + kStoredData, 0, sizeof records[i].data - kStoredData * 2);
  }
}

void encode(const Vex2WellRecord* records, std::uint8_t* bytes, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i, bytes += kStoredRecordSize) {
    std::array<std::uint16_t, kLeading + kStoredData> stored;
    swapValues<kLeading>(records[i].leading, stored.data());
    swapValues<kStoredData>(records[i].data, stored.data() + kLeading);
    std::memcpy(bytes, stored.data(), kStoredRecordSize);
  }
}

}  // namespace

int ReadWellRecords(CFile& file, Vex2WellRecord* records, std::size_t count) {
  while (count > 0) {
    const auto bytes = file.Peek(kStoredRecordSize);
    if (bytes.size() < kStoredRecordSize) {
      static_cast<void>(ShortRead(file));
      return kReadFailed;
    }
    const std::size_t whole = std::min(count, bytes.size() / kStoredRecordSize);
    decode(bytes.data(), records, whole);
    file.Seek(static_cast<std::int64_t>(whole * kStoredRecordSize), CFile::current);
    records += whole;
    count -= whole;
  }
  return kSuccess;
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
