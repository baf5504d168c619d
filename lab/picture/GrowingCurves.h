#pragma once

#include <string>
#include <utility>
#include <vector>

#include "lab/model/Readings.h"
#include "lab/model/RunReader.h"
#include "lab/picture/Scene.h"

namespace vex2::lab {

/// The curves of a run while it is recorded. They are drawn only from its frames: the readings of
/// each cycle, or of each temperature in the melting stage.
class GrowingCurves {
 public:
  /// Adds the next frame.
  void Add(const Frame& frame);
  /// The curves of the stage to which the last frame belongs, coloured by detector. `run` has the
  /// content of the wells, and `channels` the names of the channels. The scene has no series as
  /// long as there are no readings.
  Scene Build(const RunReader& run, const std::vector<std::string>& channels) const;

 private:
  using Points = std::vector<ScenePoint>;

  Scene axes() const;

  std::vector<std::uint16_t> wells_;         // well numbers in the order of the frames
  std::vector<std::vector<Points>> curves_;  // by well and channel
  FramePosition last_;
  bool isKnown_ = false;  // whether readings are in real units
};

}  // namespace vex2::lab
