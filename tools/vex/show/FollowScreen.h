#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "lab/picture/GrowingCurves.h"
#include "lab/record/RunFollower.h"
#include "tools/vex/Lab.h"
#include "tools/vex/show/RecordProgress.h"

namespace vex2::tool {

/// A run that is followed, for people: on a terminal its curves, which grow, above a line that says
/// how far it is; elsewhere a line for each frame.
class FollowScreen {
 public:
  explicit FollowScreen(const std::string& file) : file_(file) { progress_.emplace(file); }

  void Show(const Frame& frame, const RunFollower& follower);
  /// Shows what was not shown yet because frames came too fast; to be called when none comes.
  void CatchUp(const RunFollower& follower);
  /// Leaves the line of the progress as it is. Nothing may be shown any more.
  void Leave() { progress_.reset(); }
  /// Says that the run is complete.
  void End(const RunFollower& follower);

 private:
  using Clock = std::chrono::steady_clock;

  void draw(const RunFollower& follower);

  std::string file_;
  std::optional<RecordProgress> progress_;
  GrowingCurves curves_;
  Clock::time_point drawn_;
  bool isStale_ = false;   // a frame came since the curves were drawn
  std::size_t lines_ = 0;  // of the picture that is above the progress
  std::size_t width_ = 0;  // of the screen that it was drawn on
  std::size_t height_ = 0;
};

}  // namespace vex2::tool
