#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "lab/model/Readings.h"

namespace vex2::lab {

/// What a `Readings` and its copies share. Nobody changes it once it is filled.
struct Readings::Matrix {
  std::vector<std::uint16_t> wells;
  std::vector<FramePosition> axis;
  std::shared_ptr<std::uint16_t[]> values;  ///< frames x wells x 32
  std::optional<ReadingMeaning> meaning;
  /// A word for each frame and well where the meaning is known: bit c for a channel without
  /// reading.
  std::shared_ptr<std::uint16_t[]> missing;
};

}  // namespace vex2::lab
