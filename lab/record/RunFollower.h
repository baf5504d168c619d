#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "lab/model/Readings.h"
#include "lab/model/RunReader.h"
#include "vex2/framework/Export.h"

namespace vex2::lab {

/// How far a run that is followed has come.
enum class FollowState {
  kWaiting,  ///< no document exists at the path yet
  kRunning,  ///< its run goes on, or was interrupted and may be resumed
  kDone,     ///< its run is complete, and every frame was handed out
};

/// Follows a run while another program records it: hands out each committed frame once, in order.
///
///     vex2::lab::RunFollower follower("run.vex");
///     while (follower.State() != vex2::lab::FollowState::kDone) {
///       if (const auto frame = follower.Next(std::chrono::seconds(1))) show(*frame);
///     }
///
/// The document need not exist yet. The follower continues when the recorder stops and resumes, and
/// when a save replaces the document. It only reads, and costs the recorder nothing: it looks at
/// the file ten times a second, without a lock. A short lock is taken only to read the document's
/// other records, when the document is first met and when it was replaced.
///
/// All operations throw `Error` and nothing else. Use a follower from one thread at a time; any
/// number of followers can follow the same run.
class VEX2_API RunFollower {
 public:
  /// Follows the run of the document at `path` from frame `firstFrame` (from 0) on. Touches no
  /// file.
  explicit RunFollower(const std::filesystem::path& path, std::uint64_t firstFrame = 0);
  ~RunFollower();
  /// Takes the place of the other, which may then only be assigned to or destroyed.
  RunFollower(RunFollower&&) noexcept;
  /// Takes the place of the other, which may then only be assigned to or destroyed.
  RunFollower& operator=(RunFollower&&) noexcept;

  /// The next committed frame of the raw readings. Waits for it no longer than `wait`; nothing if
  /// none was committed in that time, and at once when the run is complete.
  ///
  /// Throws `Error` when the file is not a plate document, is a study, is damaged in front of its
  /// readings, or cannot be read, and when another run has taken its place: one that does not hold
  /// the frames that were handed out. The follower then stays as it was.
  std::optional<Frame> Next(std::chrono::milliseconds wait);

  /// As it was given.
  const std::filesystem::path& Path() const;
  /// As the last call of `Next` found it.
  FollowState State() const;
  /// The index of the frame that comes next, from 0.
  std::uint64_t NextFrame() const;
  /// The frames that the document held when `Next` last looked.
  std::uint64_t CommittedFrames() const;
  /// The frames that the whole run has, where the log says so.
  std::optional<std::uint64_t> PlannedFrames() const;
  /// The names of the channels; none where each well has one channel without a name, and where the
  /// meaning of the readings is not known.
  std::vector<std::string> Channels() const;
  /// What else the document says, as it was last read; nothing while there is none. Valid until
  /// `Next` is called.
  const std::optional<RunReader>& Run() const;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace vex2::lab
