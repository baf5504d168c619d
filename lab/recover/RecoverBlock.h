#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "lab/model/BigEndian.h"
#include "lab/recover/RecoverSource.h"
#include "vex2/storage/FrameLog.h"

namespace vex2::lab {

/// A data block in a damaged file. Damaged parts are replaced by guesses.
struct RecoverBlock {
  std::string tag;
  std::uint64_t offset = 0;  ///< offset of its tag; if the tag is lost, where it would be
  std::uint32_t length = 0;  ///< the declared length
  std::uint16_t version = 2;
  std::array<std::uint8_t, kTimeBlockSize> times{};
  std::uint16_t wells = 0;
  std::vector<std::uint16_t> numbers;  ///< well numbers
  std::uint64_t firstFrame = 0;
  std::uint64_t frames = 0;   ///< number of frames, by the declared length or by a search
  bool lengthAgrees = false;  ///< the declared length equals the size of the wells and whole frames
  std::vector<std::string> guesses;  ///< what was guessed, as texts for the user

  std::uint64_t FrameSize() const { return kStoredRecordSize * wells; }
  std::uint64_t End() const { return firstFrame + frames * FrameSize(); }
  /// The range of its frames in a file of this length.
  FrameRange Range(std::uint64_t fileEnd) const {
    return {firstFrame, FrameSize(), End(), fileEnd};
  }
};

/// Reads the head of the block at `offset`, which may have any tag. Does not read the well numbers.
std::optional<RecoverBlock> BlockAt(RecoverSource& source, std::uint64_t offset);

/// The well numbers of the block in the file; empty if they are not valid.
std::vector<std::uint16_t> ReadWellNumbers(RecoverSource& source, std::uint64_t offset,
                                           std::uint16_t wells);

/// A search for a block whose head cannot be read.
struct BlockSearch {
  std::uint64_t from = 0;
  std::uint64_t to = 0;                   ///< end of its last frame, or of the file
  bool beginsAtFrom = false;              ///< the block's tag is at `from`, even if damaged
  std::vector<std::uint16_t> wellCounts;  ///< likely numbers of wells, the likeliest first: those
                                          ///< of other blocks and of the plate
};

/// Finds the frames of a block by what is left of its head: its version and size of times, its well
/// numbers, or its length. If nothing is left, looks for a number of wells for which frames, of 80
/// bytes for each well, exactly fill the bytes up to `to`. The block's tag is empty if it cannot be
/// read. Returns nothing if there is not even one whole frame.
std::optional<RecoverBlock> FindLostBlock(RecoverSource& source, const BlockSearch& search);

/// The value at the start of the well records in the frame, apart from records without a reading.
/// Returns nothing if the records differ in that value, or if no record has a reading.
std::optional<std::uint16_t> MarkerOf(RecoverSource& source, std::uint64_t frame,
                                      std::uint16_t wells);

/// Counts how many frames from `offset` on look like frames; stops at `most`. A frame looks like
/// one if at least half of its well records begin with `marker`; if there is no `marker`, if they
/// begin with any value but 0.
std::uint64_t CountPlausibleFrames(RecoverSource& source, std::uint64_t offset, std::uint16_t wells,
                                   std::uint64_t most, std::optional<std::uint16_t> marker);

}  // namespace vex2::lab
