#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "vex2/framework/CFile.h"

/// The head of a data block's body and the geometry of its frames. See docs/format.md.
namespace vex2 {

/// Bytes of the body of a block without wells and frames, in version 2.
constexpr std::uint64_t kBlockFixedSize = 18;
constexpr std::uint16_t kTimeBlockSize = 12;
constexpr std::uint16_t kBlockVersion = 2;
/// The first version whose body has times.
constexpr std::uint16_t kFirstVersionWithTimes = 2;
/// Of one well in one frame: as many 16-bit values as `Vex2WellRecord` has, but for the last four
/// data values.
constexpr std::size_t kStoredLeadingValues = 8;
constexpr std::size_t kStoredDataValues = 32;
constexpr std::size_t kStoredRecordSize =
    (kStoredLeadingValues + kStoredDataValues) * sizeof(std::uint16_t);

/// Bytes of a frame of `wells` wells.
constexpr std::uint64_t FrameSize(std::uint16_t wells) {
  return kStoredRecordSize * std::uint64_t{wells};
}
/// Bytes of the body before its first frame.
constexpr std::uint64_t FramesOffset(std::uint16_t wells) {
  return kBlockFixedSize + sizeof(std::uint16_t) * std::uint64_t{wells};
}
/// The frames that a body of this length counts; 0 without wells. The bytes of the well numbers are
/// fewer than a frame's and vanish in the division, so a body can count one frame more than the
/// rest of it holds.
constexpr std::uint64_t FrameCount(std::uint32_t length, std::uint16_t wells) {
  if (wells == 0 || length < kBlockFixedSize) return 0;
  return (length - kBlockFixedSize) / FrameSize(wells);
}
/// The frames that fit after the well numbers in a body of this length.
constexpr std::uint64_t WholeFrames(std::uint32_t length, std::uint16_t wells) {
  if (wells == 0 || length < FramesOffset(wells)) return 0;
  return (length - FramesOffset(wells)) / FrameSize(wells);
}

/// The part of a data block's body before the well numbers.
struct DataBlockHead {
  std::uint16_t version = kBlockVersion;
  std::uint16_t timeBlockSize = 0;                   ///< as stated
  std::array<std::uint8_t, kTimeBlockSize> times{};  ///< start and end, six bytes each
  std::uint16_t wells = 0;
};

/// How a reader finds the well count after the times.
enum class TimeBlock : std::uint8_t {
  kAsWritten,  ///< twelve bytes, none before version 2: as components read a body
  kAsStated,   ///< as many bytes as it says, in every version: as single frames are found
};

/// Reads the head at the file's position, which is left at the well numbers. Returns false if the
/// file ends before the well numbers; the fields that were read completely by then are set.
[[nodiscard]] bool ReadDataBlockHead(CFile& file, TimeBlock rule, DataBlockHead& head);

/// Reads `count` well numbers at the file's position. False when the file ends before, and then
/// nothing is allocated, the rest of the file is consumed and `numbers` is unchanged.
[[nodiscard]] bool ReadWellNumbers(CFile& file, std::uint16_t count,
                                   std::vector<std::uint16_t>& numbers);

}  // namespace vex2
