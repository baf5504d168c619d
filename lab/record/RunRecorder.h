#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

#include "lab/record/RecordingPlan.h"
#include "vex2/framework/Export.h"

namespace vex2::lab {

/// What a `RunRecorder` does with a document that exists. With neither, it refuses.
struct RecorderOptions {
  bool resume = false;   ///< continue it, if it holds the beginning of the planned run
  bool replace = false;  ///< replace it; not together with `resume`
};

/// Records a run to a document. A frame is on the disk when `Append` returns, and stays there
/// whatever happens to the program, the system or the power afterwards. A recorder that is
/// destroyed without `Finish` leaves a document that can be resumed.
///
/// All operations throw `Error` and nothing else. While the recorder lives, no other recorder,
/// editor or command can change the document. Use a recorder from one thread at a time.
class VEX2_API RunRecorder {
 public:
  /// Makes the document at `path` from `plan`, or resumes it: uncommitted bytes of an interrupted
  /// commit are cut off, and the whole content of the document is compared with `plan`.
  ///
  /// Throws `Error` when the document exists and `options` do not say what to do with it, when it
  /// is being recorded, has further hard links, or differs from `plan`; then it is unchanged.
  RunRecorder(const std::filesystem::path& path, const RecordingPlan& plan,
              RecorderOptions options = {});
  /// Releases the document. A run that is not finished can be resumed.
  ~RunRecorder();
  /// Takes the recording of the other, which may then only be assigned to or destroyed.
  RunRecorder(RunRecorder&&) noexcept;
  /// Releases the document of this recorder, and takes the recording of the other, which may then
  /// only be assigned to or destroyed.
  RunRecorder& operator=(RunRecorder&&) noexcept;

  /// The frames that the document held when it was resumed, 0 for a new one. Continue with the
  /// frame of this index.
  std::size_t RecordedFrames() const;
  /// The frames that are in the document now. Also the index of the next frame, from 0.
  std::size_t FrameCount() const;
  /// Whether the run is complete: finished by this recorder, or before it was resumed.
  bool IsFinished() const;
  /// The numbers of the wells that each frame has readings of, from 1, ascending.
  std::span<const std::uint16_t> Wells() const;

  /// Appends a frame; it is on the disk when this returns. For a plan with a scale. Throws `Error`
  /// and keeps the document as it was
  /// - when the frame does not have one reading of each well, a reading does not fit, its cycle
  ///   is 0 or not above the last recorded one of its stage, or the run is finished (class
  ///   `kUsage`), or
  /// - when the system refuses (class `kSystem`): the same frame can be appended again. After the
  ///   disk failed to store what was written, every further call fails: its content is uncertain
  ///   until the document is resumed by a new recorder.
  void Append(const MeasuredFrame& frame);
  /// Appends a frame of a run whose plan has no scale: one record for each well, in any order. The
  /// frame is on the disk when this returns. Throws as `Append(const MeasuredFrame&)` does.
  void Append(std::span<const RawRecord> frame);

  /// Ends the run: writes end time and status "DONE". Does nothing for a run that is finished.
  /// Throws `Error` when the plan's number of frames is not reached, or the system refuses; then
  /// the run is not finished, and this can be tried again.
  void Finish();

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace vex2::lab
