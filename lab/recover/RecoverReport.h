#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "vex2/framework/Language.h"

namespace vex2::lab {

/// A place in the damaged file.
struct RecoverNote {
  std::uint64_t offset = 0;  ///< bytes from its start
  std::uint64_t bytes = 0;   ///< that were lost
  std::string what;          ///< for people
};

/// What a recovery found of a damaged file, and what it did not.
struct RecoverReport {
  /// At most this many places are listed; all are counted.
  static constexpr std::size_t kMostNotes = 1000;

  std::uint64_t size = 0;     ///< of the damaged file
  std::uint64_t written = 0;  ///< bytes of the new one
  std::uint64_t records = 0;  ///< whole ones, also within lists
  std::uint64_t frames = 0;   ///< whole ones
  std::uint64_t plates = 0;   ///< of a study

  bool hasHeader = false;  ///< one that is whole, with or without records

  std::uint64_t lostBytes = 0;    ///< bytes of the damaged file that are not in the new one
  std::uint64_t lostRecords = 0;  ///< at least: how many stood in unreadable bytes, none can say
  std::uint64_t lostFrames = 0;   ///< frames that are known to be missing

  std::vector<RecoverNote> lost;       ///< by offset
  std::vector<RecoverNote> corrected;  ///< what was put right, or put in as a guess
  std::uint64_t lostPlaces = 0;        ///< the number of losses, in `lost` or not
  std::uint64_t correctedPlaces = 0;   ///< the number of corrections, in `corrected` or not

  std::uint64_t madeHeads = 0;  ///< of the document, plates and data blocks: damaged, made anew

  /// Whether nothing was lost and no head was made anew.
  bool IsWhole() const {
    return lostBytes == 0 && lostRecords == 0 && lostFrames == 0 && madeHeads == 0;
  }

  /// Whether a document was found at all: a header alone is one.
  bool IsAnything() const { return records > 0 || frames > 0 || hasHeader; }

  /// Counts a loss of `bytes` bytes at `offset`, and notes it if there is room.
  void Lose(std::uint64_t offset, std::uint64_t bytes, std::string what) {
    lostBytes += bytes;
    ++lostPlaces;
    if (lost.size() < kMostNotes) lost.push_back({offset, bytes, std::move(what)});
  }
  /// Counts a correction at `offset`, and notes it if there is room.
  void Correct(std::uint64_t offset, std::string what) {
    ++correctedPlaces;
    if (corrected.size() < kMostNotes) corrected.push_back({offset, 0, std::move(what)});
  }
};

}  // namespace vex2::lab
