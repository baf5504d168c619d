#pragma once

#include <string>
#include <utility>
#include <vector>

#include "lab/model/Readings.h"
#include "lab/model/RunReader.h"
#include "lab/picture/Scene.h"

namespace vex2::lab {

/// The curves of a run while it is recorded, drawn from its frames alone: what the instrument read,
/// by cycles or by temperatures of melting.
class GrowingCurves {
 public:
  /// Takes the next frame.
  void Add(const Frame& frame);
  /// The curves so far of the stage that the last frame belongs to, coloured by detector. `run`
  /// says what is in the wells, `channels` what the readings of a well are called. Without a series
  /// as long as there are no readings.
  Scene Build(const RunReader& run, const std::vector<std::string>& channels) const;

 private:
  using Points = std::vector<ScenePoint>;

  Scene axes() const;

  std::vector<std::uint16_t> wells_;         // numbers, in the order of the frames
  std::vector<std::vector<Points>> curves_;  // of each well, then of each channel
  FramePosition last_;
  bool isKnown_ = false;  // whether readings are in real units
};

}  // namespace vex2::lab
