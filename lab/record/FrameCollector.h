#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "lab/record/ReadingRows.h"

namespace vex2::lab {

/// Identifies a frame: whether it is in the melting stage, and its cycle there. Frames of the
/// amplification sort first.
using FrameKey = std::pair<bool, std::uint16_t>;

/// The rows of one frame: a cell for each well and channel, sorted by well.
class CollectedFrame {
 public:
  CollectedFrame(FrameKey key, std::size_t cells) : key_(key), cells_(cells) {}

  FrameKey Key() const { return key_; }
  bool IsComplete() const { return filled_ == cells_.size(); }
  const std::vector<ReadingRow>& Cells() const { return cells_; }
  /// Puts the row into its cell. If the cell already has a row, keeps and returns that row;
  /// otherwise returns null.
  const ReadingRow* Put(std::size_t cell, const ReadingRow& row);
  /// The index of the first cell without a row; the number of cells if all have one.
  std::size_t FirstMissing() const;

 private:
  FrameKey key_;
  std::vector<ReadingRow> cells_;  ///< a cell that has no row has the row number 0
  std::size_t filled_ = 0;
};

/// Collects rows and puts them together to frames. The rows may come in any order. All errors name
/// the file; if one row is at fault, they also name the row.
class FrameCollector {
 public:
  /// The wells and channels of `plan` must already be known. `plan` must outlive the collector.
  FrameCollector(const RunPlan& plan, std::string file);

  /// Adds a row to its frame, and returns the frame. Throws an error if the frame already has a row
  /// of this well and channel, or if the channels of the well differ in time or temperature.
  CollectedFrame& Add(const ReadingRow& row);
  /// Removes a frame that is not needed any more.
  void Remove(FrameKey key) { frames_.erase(key); }

  /// The collected frames, amplification first, each stage sorted by cycle.
  const std::map<FrameKey, CollectedFrame>& Frames() const { return frames_; }
  /// A text about the first missing reading of an incomplete frame: "well A1 has no reading in
  /// amplification cycle 7".
  std::string MissingText(const CollectedFrame& frame) const;
  /// Throws an error with `MissingText(frame)`.
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
