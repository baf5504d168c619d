#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "vex2/format/DataBlockHead.h"
#include "vex2/format/Encoding.h"
#include "vex2/framework/CFile.h"

/// Reads well records from a file in bulk.
namespace vex2 {

// `LoadStoredRecord` swaps the bytes of each value, which is right only on a little-endian
// computer.
static_assert(std::endian::native == std::endian::little);

/// Swaps the two bytes of each of `Count` values. The loop has a fixed length, so that the compiler
/// can turn it into a few vector instructions.
template <std::size_t Count>
inline void SwapValues(const std::uint16_t* in, std::uint16_t* out) {
  for (std::size_t i = 0; i < Count; ++i) {
    out[i] = static_cast<std::uint16_t>(in[i] << 8U | in[i] >> 8U);
  }
}

/// Loads the record that is stored in `bytes`: eight leading values and 32 data values.
inline void LoadStoredRecord(const std::uint8_t* bytes, std::uint16_t* leading,
                             std::uint16_t* data) {
  std::uint16_t stored[kStoredLeadingValues + kStoredDataValues];
  std::memcpy(stored, bytes, kStoredRecordSize);
  SwapValues<kStoredLeadingValues>(stored, leading);
  SwapValues<kStoredDataValues>(stored + kStoredLeadingValues, data);
}

/// Reads `count` stored records at the file's position, directly from the file's buffer, and calls
/// `take` with the bytes of each. Returns false if the file ends before the last of them; the rest
/// of the file is then consumed.
template <typename Take>
[[nodiscard]] bool ReadStoredRecords(CFile& file, std::size_t count, Take take) {
  while (count > 0) {
    const auto bytes = file.Peek(kStoredRecordSize);
    std::size_t whole = bytes.size() / kStoredRecordSize;
    if (whole == 0) return ShortRead(file);
    if (whole > count) whole = count;
    for (std::size_t i = 0; i < whole; ++i) take(bytes.data() + i * kStoredRecordSize);
    file.Seek(static_cast<std::int64_t>(whole * kStoredRecordSize), CFile::current);
    count -= whole;
  }
  return true;
}

}  // namespace vex2
