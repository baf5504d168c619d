#pragma once

#include <chrono>
#include <string>

#include "lab/record/Recorder.h"
#include "tools/vex/Lab.h"
#include "tools/vex/screen/ProgressLine.h"

namespace vex2::tool {

/// Shows the progress of a recording in one line on the terminal: a bar, the frames and, if known,
/// the remaining time and the duration of the last commit.
class RecordingProgress {
 public:
  explicit RecordingProgress(std::string name);

  void Show(const RecordState& state);

 private:
  using Clock = std::chrono::steady_clock;

  std::string text(const RecordState& state) const;

  std::string name_;
  ProgressLine line_;
  bool hasBegun_ = false;
  std::size_t framesAtStart_ = 0;
  Clock::time_point begun_;
  Clock::time_point lastDrawn_;
};

}  // namespace vex2::tool
