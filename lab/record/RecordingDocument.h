#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "lab/model/DocumentFile.h"
#include "lab/model/DocumentLock.h"
#include "lab/model/FrameReader.h"
#include "lab/record/InterruptedRun.h"
#include "lab/record/RunPlan.h"
#include "vex2/run/Vex2WellRecord.h"

namespace vex2::lab {

/// A document to which a run is recorded. It is made or resumed, grows frame by frame, and is
/// finished. Only this class knows in which order to call the manager so that no committed frame
/// can be lost: it saves the whole document before there is a data block and after the last frame,
/// and in between it only commits frames.
///
/// Every operation throws an error that names the document. After a failed commit the document
/// holds the earlier frames, and the same frame can be committed again. If another program has
/// replaced or changed the file, nothing is written to it.
class RecordingDocument {
 public:
  struct Options {
    std::string path;
    bool resume = false;   ///< continue the document if it exists
    bool replace = false;  ///< replace it if it exists
  };

  explicit RecordingDocument(Options options);

  /// Locks the document and checks that `plan` can be recorded to it. If not, throws an error and
  /// changes nothing.
  void Claim(const RunPlan& plan);
  bool IsClaimed() const { return lock_ != nullptr; }

  /// Makes a new document, or repairs and reads the document to resume. After this, the next frame
  /// can be committed. Returns false if the run is already complete.
  bool Begin(const RunPlan& plan);
  /// Appends a frame: a record for each of the plan's wells. The frame is on the disk when this
  /// returns.
  void Commit(const RunPlan& plan, std::span<const Vex2WellRecord> records);
  /// Stores what is known only at the end of the run, and the status of a finished run.
  void Finish(const RunPlan& plan);

  /// Whether the run starts with a new document. Valid after `Claim`.
  bool IsNew() const { return !interrupted_; }
  /// Whether the run to resume was already complete.
  bool WasDone() const { return interrupted_ && interrupted_->IsDone(); }
  /// The number of frames on the disk. Valid after `Begin`.
  std::size_t FrameCount() const { return frameCount_; }
  /// The readings of `wells` in the frame with this index, from 0.
  std::vector<RunReading> RecordedFrame(std::size_t index,
                                        std::span<const unsigned short> wells) const;
  /// Throws an error if the disk has failed to store a frame. After such a failure nothing more is
  /// recorded.
  void RequireSynced() const;
  const std::string& Path() const { return options_.path; }

 private:
  void make(const RunPlan& plan);
  void openBlock(const RunPlan& plan);
  void noteFile();
  void requireOwnFile() const;
  void readAnew(const RunPlan& plan);
  bool holdsFrame(int index, const RunPlan& plan, std::span<const Vex2WellRecord> records) const;
  [[noreturn]] void refuseOtherFrames() const;
  void check(int status) const;

  Options options_;
  std::filesystem::path document_;  ///< resolved path, see `ResolveDocument`
  std::unique_ptr<DocumentLock> lock_;
  std::optional<InterruptedRun> interrupted_;  ///< the run to resume; nothing for a new document
  DocumentFile manager_;
  std::size_t frameCount_ = 0;
  FileIdentity identity_;         ///< identity of the file after the last commit
  std::uint64_t size_ = 0;        ///< size of the file after the last commit
  bool hasFailedCommit_ = false;  ///< the manager may hold a frame that the file does not
  bool hasFailedSync_ = false;    ///< the disk failed to store a frame
};

}  // namespace vex2::lab
