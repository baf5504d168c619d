#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "lab/Interrupts.h"
#include "lab/model/DocumentFile.h"
#include "lab/model/DocumentLock.h"
#include "lab/record/InterruptedRun.h"
#include "lab/record/RunPlan.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::lab {

/// How a run is brought to its document.
struct RecordOptions {
  std::string path;
  double pace = 0;      ///< seconds from one frame to the next; 0 is as fast as it goes
  bool resume = false;  ///< go on with a document that is there
  bool force = false;   ///< replace one
};

/// How far a recording has come.
struct RecordState {
  std::size_t framesDone = 0;
  std::optional<std::size_t> framesTotal;  ///< nothing while nobody knows
  double lastCommit = 0;                   ///< seconds that it took
};

/// Brings a planned run to its document as an instrument would: a document with settings and
/// program first, then frame by frame, each on the disk before the next is read, and last the end
/// time and the status of a finished run.
class Recorder {
 public:
  enum class Outcome { kDone, kWasDone, kInterrupted };

  /// `plan` must outlive the recorder. `report` is called before the first frame and after each.
  Recorder(const RunPlan& plan, RecordOptions options,
           std::function<void(const RecordState&)> report);

  /// Locks the document and checks that it can be recorded to. Throws an error if not; nothing
  /// was changed then. `Run` and `Begin` do so themselves where it was not called.
  void Claim();
  /// Records the plan's frames until the run or the user ends it. Throws an error, and then the
  /// document holds every frame that was reported and can be gone on with.
  Outcome Run();

  /// The same in steps, for frames that come while they are recorded. Makes the document, or goes
  /// on with one. False when nothing is left to do.
  bool Begin();
  /// Appends the plan's next frame to the document; it is on the disk when this returns.
  void Append();
  /// Ends the run.
  void Finish();

  /// Whether there is no document yet, once it is claimed.
  bool IsNew() const { return !interrupted_; }
  bool WasDone() const { return interrupted_ && interrupted_->IsDone(); }
  /// The frames of the document, once it was begun.
  std::size_t FramesDone() const { return state_.framesDone; }
  /// The readings of one of them.
  std::vector<RunReading> RecordedFrame(std::size_t index) const;

 private:
  bool goOn();
  void begin();
  void openBlock();
  void commit(std::size_t frame);
  void check(int status) const;

  const RunPlan& plan_;
  RecordOptions options_;
  std::function<void(const RecordState&)> report_;
  std::filesystem::path document_;  ///< the one path that the given one leads to
  std::unique_ptr<DocumentLock> lock_;
  std::optional<InterruptedRun> interrupted_;  ///< what to go on with; nothing: a new document
  DocumentFile manager_;
  RecordState state_;
};

}  // namespace vex2::lab
