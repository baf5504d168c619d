#pragma once

#include <chrono>
#include <string>

#include "lab/record/Recorder.h"
#include "tools/vex/Lab.h"
#include "tools/vex/text/ProgressLine.h"

namespace vex2::tool {

/// How far a recording is, in one line on the terminal: a bar, frames, the time that is left and
/// how long the last commit took, where that is known.
class RecordProgress {
 public:
  explicit RecordProgress(std::string name);

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
