#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

#include "lab/record/RecordingPlan.h"
#include "vex2/framework/Export.h"

namespace vex2::lab {

/// What a `RunRecorder` does with an existing document. If neither is set, it refuses the document.
struct RecorderOptions {
  bool resume = false;   ///< continue the document if it holds the beginning of the planned run
  bool replace = false;  ///< replace the document; not together with `resume`
};

/// Records a run to a document. A frame is on the disk when `Append` returns. It stays there
/// whatever happens to the program, the system or the power after that. A recorder that is
/// destroyed without `Finish` leaves a document that can be resumed.
///
/// All operations throw `Error` and nothing else. During the lifetime of the recorder, no other
/// recorder, editor or command can change the document. Use a recorder from one thread at a time.
class VEX2_API RunRecorder {
 public:
  /// Makes the document at `path` from `plan`, or resumes it. Before it resumes a document, it
  /// compares its whole content with `plan`, and cuts off the uncommitted bytes of an interrupted
  /// commit.
  ///
  /// Throws `Error` if the document exists and neither option is set, or if it is being recorded,
  /// has further hard links, or differs from `plan`. The document is then unchanged.
  RunRecorder(const std::filesystem::path& path, const RecordingPlan& plan,
              RecorderOptions options = {});
  /// Unlocks the document. A run that is not finished can be resumed.
  ~RunRecorder();
  /// Takes over the recording of the other recorder, which may then only be assigned to or
  /// destroyed.
  RunRecorder(RunRecorder&&) noexcept;
  /// Unlocks the document of this recorder, and takes over the recording of the other one, which
  /// may then only be assigned to or destroyed.
  RunRecorder& operator=(RunRecorder&&) noexcept;

  /// The number of frames that the document held when it was resumed; 0 for a new one. It is also
  /// the index of the first frame to append.
  std::size_t RecordedFrames() const;
  /// The number of frames in the document now, which is also the index of the next frame.
  std::size_t FrameCount() const;
  /// Whether the run is complete: finished by this recorder, or before it was resumed.
  bool IsFinished() const;
  /// The numbers of the wells with readings in each frame, from 1, ascending.
  std::span<const std::uint16_t> Wells() const;

  /// Appends a frame of a run whose plan has a scale. The frame is on the disk when this returns.
  ///
  /// Throws `Error` of class `kUsage`, and leaves the document unchanged, if the frame does not
  /// have one reading of each well, if a reading does not fit, if the cycle is 0 or not above the
  /// last recorded cycle of its stage, or if the run is finished.
  ///
  /// Throws `Error` of class `kSystem` if the system refuses. The document then keeps the earlier
  /// frames, and the same frame can be appended again. However, if the disk failed to store written
  /// bytes, all further calls fail: the content of the file is uncertain until a new recorder
  /// resumes the document.
  void Append(const MeasuredFrame& frame);
  /// Appends a frame of a run whose plan has no scale: one record for each well, in any order. The
  /// frame is on the disk when this returns. Throws as `Append(const MeasuredFrame&)` does.
  void Append(std::span<const RawRecord> frame);

  /// Ends the run: writes end time and status "DONE". Does nothing if the run is already finished.
  /// Throws `Error` if the run has fewer frames than planned, or if the system refuses. The run is
  /// then not finished, and the call can be repeated.
  void Finish();

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace vex2::lab
