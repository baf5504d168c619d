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

/// A document while a run is recorded to it: made or resumed, grown frame by frame, finished. The
/// one place that knows in which order the manager's operations keep every committed frame: the
/// document is saved whole before it has a data block and after its last frame, and in between only
/// frames are committed.
///
/// Every operation throws an error that names the document. After a failed commit the document
/// holds the frames before, and the same frame may be tried again. A file that another program has
/// put in the document's place, or changed, is never written to.
class RecordingDocument {
 public:
  struct Options {
    std::string path;
    bool resume = false;   ///< continue the document if it exists
    bool replace = false;  ///< replace it if it exists
  };

  explicit RecordingDocument(Options options);

  /// Locks the document and checks that `plan` can be recorded to it. Throws an error if not;
  /// nothing was changed then.
  void Claim(const RunPlan& plan);
  bool IsClaimed() const { return lock_ != nullptr; }

  /// Makes the document, or brings the one that is resumed to where the next frame is committed.
  /// False when the run was complete.
  bool Begin(const RunPlan& plan);
  /// Appends a frame, a record for each of the plan's wells; it is on the disk when this returns.
  void Commit(const RunPlan& plan, std::span<const Vex2WellRecord> records);
  /// Gives the document what is known only at the end of the run, and the status of a finished run.
  void Finish(const RunPlan& plan);

  /// Whether there is no document to resume, once it is claimed.
  bool IsNew() const { return !interrupted_; }
  /// Whether the run of the document to resume was complete.
  bool WasDone() const { return interrupted_ && interrupted_->IsDone(); }
  /// The frames that are on the disk, once the run was begun.
  std::size_t FrameCount() const { return frameCount_; }
  /// The readings of one of them, of these wells.
  std::vector<RunReading> RecordedFrame(std::size_t index,
                                        std::span<const unsigned short> wells) const;
  /// Throws an error once the disk has failed to store a frame: nothing is recorded from then on.
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
  std::filesystem::path document_;  ///< the one path that the given one leads to
  std::unique_ptr<DocumentLock> lock_;
  std::optional<InterruptedRun> interrupted_;  ///< what to resume; nothing: a new document
  DocumentFile manager_;
  std::size_t frameCount_ = 0;
  FileIdentity identity_;         ///< of the file that this recorded to last
  std::uint64_t size_ = 0;        ///< that it had then
  bool hasFailedCommit_ = false;  ///< the manager may hold a frame that the file does not
  bool hasFailedSync_ = false;    ///< the disk failed to store a frame
};

}  // namespace vex2::lab
