#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "lab/picture/GrowingCurves.h"
#include "lab/record/RunFollower.h"
#include "tools/vex/Lab.h"
#include "tools/vex/screen/RecordingProgress.h"

namespace vex2::tool {

/// Shows a followed run to people: on a terminal, growing curves above a progress line; in a file
/// or pipe, one line for each frame.
class FollowScreen {
 public:
  explicit FollowScreen(const std::string& file) : file_(file) { progress_.emplace(file); }

  void Show(const Frame& frame, const RunFollower& follower);
  /// Draws the frames that were not drawn because they came too fast. Call this while no frame
  /// comes.
  void CatchUp(const RunFollower& follower);
  /// Ends the display and keeps the progress line on the terminal. Do not call `Show` afterwards.
  void Leave() { progress_.reset(); }
  /// Prints that the run is complete.
  void End(const RunFollower& follower);

 private:
  using Clock = std::chrono::steady_clock;

  void draw(const RunFollower& follower);

  std::string file_;
  std::optional<RecordingProgress> progress_;
  GrowingCurves curves_;
  Clock::time_point drawn_;
  bool isStale_ = false;   // a frame came after the last drawing
  std::size_t lines_ = 0;  // of the curves above the progress line
  std::size_t width_ = 0;  // of the screen at the last drawing
  std::size_t height_ = 0;
};

}  // namespace vex2::tool
