#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "vex2/framework/CFile.h"

/// The head of a data block's body and the geometry of its frames. See docs/format.md.
namespace vex2 {

/// The size in bytes of a version 2 body without wells and frames.
constexpr std::uint64_t kBlockFixedSize = 18;
constexpr std::uint16_t kTimeBlockSize = 12;
constexpr std::uint16_t kBlockVersion = 2;
/// The first version whose body has times.
constexpr std::uint16_t kFirstVersionWithTimes = 2;
/// The record of one well in one frame, as stored: the 16-bit values of `Vex2WellRecord` without
/// its last four data values.
constexpr std::size_t kStoredLeadingValues = 8;
constexpr std::size_t kStoredDataValues = 32;
constexpr std::size_t kStoredRecordSize =
    (kStoredLeadingValues + kStoredDataValues) * sizeof(std::uint16_t);

/// The size in bytes of a frame of `wells` wells.
constexpr std::uint64_t FrameSize(std::uint16_t wells) {
  return kStoredRecordSize * std::uint64_t{wells};
}
/// Bytes of the body before its first frame.
constexpr std::uint64_t FramesOffset(std::uint16_t wells) {
  return kBlockFixedSize + sizeof(std::uint16_t) * std::uint64_t{wells};
}
/// The number of frames that readers count in a body of this length; 0 if `wells` is 0. Readers do
/// not subtract the bytes of the well numbers, so the result can be one more than the number of
/// frames that fit after the well numbers.
constexpr std::uint64_t FrameCount(std::uint32_t length, std::uint16_t wells) {
  if (wells == 0 || length < kBlockFixedSize) return 0;
  return (length - kBlockFixedSize) / FrameSize(wells);
}
/// The number of frames that fit after the well numbers in a body of this length; 0 if `wells` is
/// 0.
constexpr std::uint64_t WholeFrames(std::uint32_t length, std::uint16_t wells) {
  if (wells == 0 || length < FramesOffset(wells)) return 0;
  return (length - FramesOffset(wells)) / FrameSize(wells);
}

/// The part of a data block's body before the well numbers.
struct DataBlockHead {
  std::uint16_t version = kBlockVersion;
  std::uint16_t timeBlockSize = 0;                   ///< the size of the times, as stated
  std::array<std::uint8_t, kTimeBlockSize> times{};  ///< start and end, six bytes each
  std::uint16_t wells = 0;
};

/// The size of the times that a reader assumes, to find the well count after them.
enum class TimeBlock : std::uint8_t {
  kAsWritten,  ///< 12 bytes, or none before version 2; for reading a whole body
  kAsStated,   ///< the size that the body states, in every version; for finding one frame
};

/// Reads the head at the file's position, which is left at the well numbers. Returns false if the
/// file ends before the well numbers; the fields that were read completely by then are set.
[[nodiscard]] bool ReadDataBlockHead(CFile& file, TimeBlock rule, DataBlockHead& head);

/// Reads `count` well numbers at the file's position. Returns false if the file ends before the
/// last of them; nothing is then allocated, the rest of the file is consumed and `numbers` is
/// unchanged.
[[nodiscard]] bool ReadWellNumbers(CFile& file, std::uint16_t count,
                                   std::vector<std::uint16_t>& numbers);

}  // namespace vex2
