#pragma once

#include <functional>
#include <optional>
#include <string>

#include "lab/record/RecordingDocument.h"

namespace vex2::lab {

/// A function that waits for `seconds`, and returns true if the work should end. In that case it
/// may return earlier. With 0 it does not wait.
using WaitOrEnd = std::function<bool(double seconds)>;

/// Waits for `seconds`, and returns false: the work never ends early.
bool JustWait(double seconds);

/// How a run is recorded.
struct RecordOptions {
  std::string path;
  double pace = 0;            ///< seconds from one frame to the next; 0 means as fast as possible
  bool resume = false;        ///< continue an existing document
  bool force = false;         ///< replace an existing document
  WaitOrEnd wait = JustWait;  ///< called before each frame, and between frames to keep the pace
};

/// The progress of a recording.
struct RecordState {
  std::size_t framesDone = 0;
  std::optional<std::size_t> framesTotal;  ///< nothing if it is not known yet
  /// Duration of the last commit in seconds. Nothing before the first commit, and for a program
  /// that only follows the run.
  std::optional<double> lastCommit;
};

/// Records a planned run as an instrument would. Makes a document with settings and program first.
/// Then appends one frame after the other, and each is on the disk before the next is read. Finally
/// writes the end time and the status of a finished run.
class Recorder {
 public:
  enum class Outcome { kDone, kWasDone, kInterrupted };

  /// `plan` must outlive the recorder. `report` is called before the first frame and after each.
  Recorder(const RunPlan& plan, RecordOptions options,
           std::function<void(const RecordState&)> report);

  /// Locks the document and checks that the run can be recorded to it. If not, throws an error and
  /// changes nothing. If it was not called before, `Run` and `Begin` call it.
  void Claim() { document_.Claim(plan_); }
  /// Records the plan's frames until the run is complete or `wait` ends the work. If it throws an
  /// error, the document holds every frame that was reported, and the run can be resumed.
  Outcome Run();

  /// Begins a recording whose frames are still to come: makes or resumes the document. Returns
  /// false if the run is already complete.
  bool Begin();
  /// Appends the plan's next frame to the document; it is on the disk when this returns.
  void Append();
  /// Ends the run: writes the end time and the status "DONE".
  void Finish() { document_.Finish(plan_); }

  /// Whether the run starts with a new document. Valid after `Claim`.
  bool IsNew() const { return document_.IsNew(); }
  bool WasDone() const { return document_.WasDone(); }
  /// The number of frames in the document. Valid after `Begin`.
  std::size_t FramesDone() const { return state_.framesDone; }
  /// The readings of the frame with this index, from 0, in the document.
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
