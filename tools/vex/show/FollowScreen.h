#pragma once

#include <string>

#include "lab/record/RunFollower.h"
#include "tools/vex/Lab.h"
#include "tools/vex/show/RecordProgress.h"

namespace vex2::tool {

/// A run that is followed, for people: on a terminal how far it is, in one line that is written
/// again and again; elsewhere a line for each frame.
class FollowScreen {
 public:
  explicit FollowScreen(const std::string& file) : file_(file), progress_(file) {}

  void Show(const Frame& frame, const RunFollower& follower);
  /// Says that the run is complete.
  void End(const RunFollower& follower) const;

 private:
  std::string file_;
  RecordProgress progress_;
};

}  // namespace vex2::tool
