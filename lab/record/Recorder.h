#pragma once

#include <functional>
#include <optional>
#include <string>

#include "lab/record/RecordingDocument.h"

namespace vex2::lab {

/// Waits for the given seconds, and returns whether the caller wants the work to end; then it may
/// return earlier. 0 asks without waiting.
using WaitOrEnd = std::function<bool(double seconds)>;

/// Waits, and never ends the work.
bool JustWait(double seconds);

/// How a run is brought to its document.
struct RecordOptions {
  std::string path;
  double pace = 0;            ///< seconds from one frame to the next; 0 is as fast as it goes
  bool resume = false;        ///< go on with a document that is there
  bool force = false;         ///< replace one
  WaitOrEnd wait = JustWait;  ///< called before each frame, and between frames to keep the pace
};

/// How far a recording has come.
struct RecordState {
  std::size_t framesDone = 0;
  std::optional<std::size_t> framesTotal;  ///< nothing while it is not known
  std::optional<double> lastCommit;        ///< seconds that it took; nothing for who looks on
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
  void Claim() { document_.Claim(plan_); }
  /// Records the plan's frames until the run or `wait` ends it. Throws an error, and then the
  /// document holds every frame that was reported and can be resumed.
  Outcome Run();

  /// Begins a recording in steps, for frames that come while they are recorded. Makes the document,
  /// or resumes one. Returns false when nothing is left to do.
  bool Begin();
  /// Appends the plan's next frame to the document; it is on the disk when this returns.
  void Append();
  /// Ends the run.
  void Finish() { document_.Finish(plan_); }

  /// Whether there is no document yet, once it is claimed.
  bool IsNew() const { return document_.IsNew(); }
  bool WasDone() const { return document_.WasDone(); }
  /// The frames of the document, once it was begun.
  std::size_t FramesDone() const { return state_.framesDone; }
  /// The readings of one of them.
  std::vector<RunReading> RecordedFrame(std::size_t index) const {
    return document_.RecordedFrame(index, plan_.wells);
  }

 private:
  const RunPlan& plan_;
  RecordOptions options_;
  std::function<void(const RecordState&)> report_;
  RecordingDocument document_;
  RecordState state_;
};

}  // namespace vex2::lab
