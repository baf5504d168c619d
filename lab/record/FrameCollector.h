#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "lab/record/ReadingRows.h"

namespace vex2::lab {

/// What a frame is known by: its stage, amplification first, and the cycle in it.
using FrameKey = std::pair<bool, std::uint16_t>;

/// The rows of one frame: a cell for each well and channel, by wells.
class CollectedFrame {
 public:
  CollectedFrame(FrameKey key, std::size_t cells) : key_(key), cells_(cells) {}

  FrameKey Key() const { return key_; }
  bool IsComplete() const { return filled_ == cells_.size(); }
  const std::vector<ReadingRow>& Cells() const { return cells_; }
  /// Puts the row in its cell; the row that is there already, if one is, stays and is returned.
  const ReadingRow* Put(std::size_t cell, const ReadingRow& row);
  /// The first cell without a row; the number of cells when there is none.
  std::size_t FirstMissing() const;

 private:
  FrameKey key_;
  std::vector<ReadingRow> cells_;  ///< the number of a row that has not come is 0
  std::size_t filled_ = 0;
};

/// Puts rows, in whatever order they come, together to the frames of a run. All its errors name
/// the file and, where there is one, the row.
class FrameCollector {
 public:
  /// `plan`, whose wells and channels are known by now, must outlive the collector.
  FrameCollector(const RunPlan& plan, std::string file);

  /// Adds a row to its frame, and returns the frame. Throws an error when the frame has another row
  /// of the well and channel, or when the well's channels differ in time or temperature.
  CollectedFrame& Add(const ReadingRow& row);
  /// Forgets a frame that was dealt with.
  void Remove(FrameKey key) { frames_.erase(key); }

  /// The frames that are there, amplification first, by their cycles.
  const std::map<FrameKey, CollectedFrame>& Frames() const { return frames_; }
  /// "well A1 has no reading in amplification cycle 7", for a frame that is not complete.
  std::string MissingText(const CollectedFrame& frame) const;
  /// Throws an error with that text.
  [[noreturn]] void RefuseIncomplete(const CollectedFrame& frame) const;

 private:
  std::string nameOf(const ReadingRow& row) const;
  void checkShared(const CollectedFrame& frame, std::size_t firstCell, const ReadingRow& row) const;
  [[noreturn]] void refuse(const ReadingRow& row, const std::string& why) const;

  const RunPlan& plan_;
  std::string file_;
  std::map<FrameKey, CollectedFrame> frames_;
};

}  // namespace vex2::lab
