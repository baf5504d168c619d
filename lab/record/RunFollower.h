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

/// The state of a run that is followed.
enum class FollowState {
  kWaiting,  ///< no document exists at the path yet
  kRunning,  ///< its run is in progress, or was interrupted and can be resumed
  kDone,     ///< its run is complete, and every frame was returned
};

/// Follows a run while another program records it: returns each committed frame once, in order.
///
///     vex2::lab::RunFollower follower("run.vex");
///     while (follower.State() != vex2::lab::FollowState::kDone) {
///       if (const auto frame = follower.Next(std::chrono::seconds(1))) show(*frame);
///     }
///
/// The document need not exist yet. The follower continues when the recorder stops and resumes, and
/// when a save replaces the document. It only reads, and does not delay the recorder: it checks the
/// file ten times a second, without a lock. It locks the file only for a short time, to read the
/// other records when it first finds the document and when the document was replaced.
///
/// All operations throw `Error` and nothing else. Use a follower from one thread at a time; any
/// number of followers can follow the same run.
class VEX2_API RunFollower {
 public:
  /// Follows the run of the document at `path`, beginning with frame `firstFrame` (from 0). Does
  /// not open the file yet.
  explicit RunFollower(const std::filesystem::path& path, std::uint64_t firstFrame = 0);
  ~RunFollower();
  /// Takes over the state of the other follower, which may then only be assigned to or destroyed.
  RunFollower(RunFollower&&) noexcept;
  /// Takes over the state of the other follower, which may then only be assigned to or destroyed.
  RunFollower& operator=(RunFollower&&) noexcept;

  /// The next committed frame of the raw readings. Waits for the frame, at most for the time
  /// `wait`. Returns nothing if no frame was committed in that time. Returns nothing immediately if
  /// the run is complete.
  ///
  /// Throws `Error` if the file is not a plate document, is a study, is damaged before its
  /// readings, or cannot be read. Also throws if the document now holds another run, without the
  /// frames that were returned. The follower then stays unchanged.
  std::optional<Frame> Next(std::chrono::milliseconds wait);

  /// The path as the caller gave it.
  const std::filesystem::path& Path() const;
  /// The state that the last call of `Next` found.
  FollowState State() const;
  /// The index of the frame that `Next` returns next, from 0.
  std::uint64_t NextFrame() const;
  /// The number of frames that the document held when `Next` last checked it.
  std::uint64_t CommittedFrames() const;
  /// The number of frames of the whole run; nothing if the log does not state it.
  std::optional<std::uint64_t> PlannedFrames() const;
  /// The names of the channels. Empty if each well has one channel without a name, or if the
  /// meaning of the readings is not known.
  std::vector<std::string> Channels() const;
  /// The content of the document other than its frames, as it was last read. Has no value while the
  /// document does not exist.
  /// Valid until `Next` is called.
  const std::optional<RunReader>& Run() const;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace vex2::lab
