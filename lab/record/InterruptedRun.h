#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "lab/record/RunPlan.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/framework/CFile.h"
#include "vex2/storage/FrameLog.h"

namespace vex2::lab {

/// The log of the document at `path`; empty if there is none.
std::string RecordedLog(const std::string& path);

/// The assay code of the document at `path`. Throws an error if it cannot be read.
std::string RecordedAssay(const std::string& path);

/// Whether a document that a recorder wrote is at `path` and has at least `frames` frames, so that
/// the run can be resumed.
bool HoldsFrames(const std::string& path, std::size_t frames);

/// A document that a recorder left behind, interrupted or complete. This class finds the data block
/// by walking the records, since the header's offset of the block may be wrong and the file may
/// continue after the block. FrameLog finds the end of the committed data. This class then compares
/// the data with the plan.
class InterruptedRun {
 public:
  /// Reads the document without changing it. Throws an error if a recorder cannot have written it.
  explicit InterruptedRun(const std::string& path);

  /// Whether the run is complete, so that no further frames follow.
  bool IsDone() const { return status_ == RunStatus::kDone; }
  bool HasBlock() const { return !wells_.empty(); }
  /// The number of committed frames.
  std::size_t FrameCount() const { return frames_.count; }

  /// Compares the document with `plan`. Throws an error that describes the first difference, unless
  /// the document holds the beginning of the planned run, or all of it if the run is complete. The
  /// frames of a live plan are not compared, since they are still to come.
  void Check(const RunPlan& plan) const;
  /// Cuts off the uncommitted bytes of an interrupted commit. Also corrects the length of the block
  /// and its offset in the header, so that the run can be resumed. If the repair is interrupted, it
  /// can be repeated.
  void Repair() const;

 private:
  void readBlock(CFile& file);
  void checkSettings(const RunPlan& plan) const;
  void checkContents(const RunPlan& plan) const;
  void checkReadings(const RunPlan& plan) const;
  [[noreturn]] void refuse(const std::string& why) const;
  [[noreturn]] void refuseAt(std::uint64_t offset, const std::string& why) const;

  std::string path_;
  std::string status_;
  std::uint16_t rows_ = 0;
  std::uint16_t columns_ = 0;
  std::uint32_t headerPosition_ = 0;  ///< the header's offset of the block
  /// Offset of the block's tag; if there is no block, the end of the records.
  std::uint64_t blockStart_ = 0;
  CommittedBlock block_;  ///< the block, if the offset in the header points to one
  std::vector<unsigned short> wells_;
  CommittedFrames frames_;
};

}  // namespace vex2::lab
