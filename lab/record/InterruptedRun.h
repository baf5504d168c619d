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

/// The log of the document at `path`; empty when there is none.
std::string RecordedLog(const std::string& path);

/// The code of its assay. Throws an error when it cannot be read.
std::string RecordedAssay(const std::string& path);

/// Whether a recorder's document is at `path` with at least this many frames, so that the run can
/// be resumed.
bool HoldsFrames(const std::string& path, std::size_t frames);

/// What a recorder has left of its document, whether it was cut off or had finished. Found by
/// walking its records, as the header's offset of the data block may be wrong and the file may
/// continue after the block. FrameLog finds where committed data end; this class compares that with
/// the plan.
class InterruptedRun {
 public:
  /// Looks at the document without changing it. Throws an error when it is none that a recorder
  /// can have been writing.
  explicit InterruptedRun(const std::string& path);

  /// The recorder had finished, and there is nothing to go on with.
  bool IsDone() const { return status_ == RunStatus::kDone; }
  bool HasBlock() const { return !wells_.empty(); }
  /// Frames that are in the document for good.
  std::size_t FrameCount() const { return frames_.count; }

  /// Throws an error that tells the first difference, unless the document holds the beginning of
  /// `plan`, or all of it where the recorder had finished. The frames of a live plan are not
  /// compared: they are still to come.
  void Check(const RunPlan& plan) const;
  /// Cuts off what a commit has left unfinished, so that the document can be resumed. A repair that
  /// is cut off itself leaves a document that can be repaired again.
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
  std::uint32_t headerPosition_ = 0;  ///< of the block, as the header has it
  std::uint64_t blockStart_ = 0;      ///< its tag's position, or where it is to stand
  CommittedBlock block_;              ///< what stands there, when the header leads to a block
  std::vector<unsigned short> wells_;
  CommittedFrames frames_;
};

}  // namespace vex2::lab
