#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "lab/model/Readings.h"

namespace vex2::lab {

/// The matrix that copies of a `Readings` share. It never changes once it is filled.
struct Readings::Matrix {
  std::vector<std::uint16_t> wells;
  std::vector<FramePosition> axis;
  std::shared_ptr<std::uint16_t[]> values;  ///< frames x wells x 32 values
  std::optional<ReadingMeaning> meaning;
  /// One word for each frame and well: bit c is set if channel c has no reading. Null if the
  /// meaning is not known.
  std::shared_ptr<std::uint16_t[]> missing;
};

}  // namespace vex2::lab
