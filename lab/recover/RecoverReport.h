#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "vex2/framework/Language.h"

namespace vex2::lab {

/// A loss or a correction in the damaged file.
struct RecoverNote {
  std::uint64_t offset = 0;  ///< bytes from the start of the damaged file
  std::uint64_t bytes = 0;   ///< the number of bytes that were lost
  std::string what;          ///< what was lost or corrected, as a text for the user
};

/// What a recovery saved from a damaged file, and what was lost.
struct RecoverReport {
  /// At most this many losses, and as many corrections, are listed; all are counted.
  static constexpr std::size_t kMostNotes = 1000;

  std::uint64_t size = 0;     ///< size of the damaged file in bytes
  std::uint64_t written = 0;  ///< size of the new document in bytes
  std::uint64_t records = 0;  ///< whole records, including those in lists
  std::uint64_t frames = 0;   ///< whole frames
  std::uint64_t plates = 0;   ///< plates of a study

  bool hasHeader = false;  ///< the header is whole, with or without records after it

  std::uint64_t lostBytes = 0;    ///< bytes of the damaged file that are not in the new one
  std::uint64_t lostRecords = 0;  ///< at least this many: unreadable bytes may have held more
  std::uint64_t lostFrames = 0;   ///< frames that are known to be missing

  std::vector<RecoverNote> lost;       ///< the losses, by offset
  std::vector<RecoverNote> corrected;  ///< the corrections and guesses
  std::uint64_t lostPlaces = 0;  ///< the number of losses, including those that are not in `lost`
  /// The number of corrections, including those that are not in `corrected`.
  std::uint64_t correctedPlaces = 0;

  std::uint64_t madeHeads = 0;  ///< damaged headers of the document and of plates, and heads of
                                ///< data blocks, that were made anew

  /// Whether nothing was lost, and no header or head of a block was made anew.
  bool IsWhole() const {
    return lostBytes == 0 && lostRecords == 0 && lostFrames == 0 && madeHeads == 0;
  }

  /// Whether anything of a document was found; its header alone is enough.
  bool IsAnything() const { return records > 0 || frames > 0 || hasHeader; }

  /// Counts a loss of `bytes` bytes at `offset`, and lists it if there is room.
  void Lose(std::uint64_t offset, std::uint64_t bytes, std::string what) {
    lostBytes += bytes;
    ++lostPlaces;
    if (lost.size() < kMostNotes) lost.push_back({offset, bytes, std::move(what)});
  }
  /// Counts a correction at `offset`, and lists it if there is room.
  void Correct(std::uint64_t offset, std::string what) {
    ++correctedPlaces;
    if (corrected.size() < kMostNotes) corrected.push_back({offset, 0, std::move(what)});
  }
};

}  // namespace vex2::lab
