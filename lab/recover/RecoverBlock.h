#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "lab/model/FileLayout.h"
#include "lab/recover/RecoverSource.h"
#include "vex2/storage/FrameLog.h"

namespace vex2::lab {

/// A data block in a damaged file: what stands there, and what was put in for what does not.
struct RecoverBlock {
  std::string tag;
  std::uint64_t offset = 0;  ///< of its tag, or where that would be
  std::uint32_t length = 0;  ///< as declared
  std::uint16_t version = 2;
  std::array<std::uint8_t, kTimeBlockSize> times{};
  std::uint16_t wells = 0;
  std::vector<std::uint16_t> numbers;  ///< of its wells
  std::uint64_t firstFrame = 0;
  std::uint64_t frames = 0;          ///< by the declared length, or found
  bool lengthAgrees = false;         ///< the declared length is what wells and whole frames take
  std::vector<std::string> guesses;  ///< what was put in, for people

  std::uint64_t FrameSize() const { return kStoredRecordSize * wells; }
  std::uint64_t End() const { return firstFrame + frames * FrameSize(); }
  /// Where its frames are in a file of this length.
  FrameRange Range(std::uint64_t fileEnd) const {
    return {firstFrame, FrameSize(), End(), fileEnd};
  }
};

/// The block whose tag is at `offset`, whatever that tag is. Numbers of wells are not read.
std::optional<RecoverBlock> BlockAt(RecoverSource& source, std::uint64_t offset);

/// The numbers of the block's wells as the file has them; nothing if they cannot be such.
std::vector<std::uint16_t> ReadWellNumbers(RecoverSource& source, std::uint64_t offset,
                                           std::uint16_t wells);

/// Where a block is looked for whose head cannot be read.
struct BlockSearch {
  std::uint64_t from = 0;
  std::uint64_t to = 0;                   ///< after its last frame, or the file's end
  bool beginsAtFrom = false;              ///< its tag is, or was, at `from`
  std::vector<std::uint16_t> wellCounts;  ///< of other blocks and of the plate, the likeliest first
};

/// Finds the frames of a block by what is left of its head: its version and size of times, its
/// numbers of wells, its length; else by how many records of wells, of 80 bytes each, fill the
/// bytes up to `to`. The tag is empty when it cannot be read. Returns nothing if there is not one
/// frame.
std::optional<RecoverBlock> FindLostBlock(RecoverSource& source, const BlockSearch& search);

/// What every record of that frame that was filled begins with; nothing if they differ, or none was
/// filled.
std::optional<std::uint16_t> MarkerOf(RecoverSource& source, std::uint64_t frame,
                                      std::uint16_t wells);

/// How many of the frames from `offset` on, at most `most`, look like frames: at least half of
/// their records begin with `marker`, or with anything but 0 where there is none.
std::uint64_t CountPlausibleFrames(RecoverSource& source, std::uint64_t offset, std::uint16_t wells,
                                   std::uint64_t most, std::optional<std::uint16_t> marker);

}  // namespace vex2::lab
