#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "lab/model/Readings.h"

namespace vex2::lab {

/// What `Readings::Matrix::missing` has of a record that no recorder of this library wrote.
inline constexpr std::uint16_t kAllMissing = 0xFFFF;

/// The matrix that copies of a `Readings` share. It never changes once it is filled.
struct Readings::Matrix {
  std::vector<std::uint16_t> wells;
  std::vector<FramePosition> axis;
  std::shared_ptr<std::uint16_t[]> values;  ///< frames x wells x 32 values
  std::optional<ReadingMeaning> meaning;
  /// One word for each frame and well: bit c is set if channel c has no reading. Null if the
  /// meaning is not known.
  std::shared_ptr<std::uint16_t[]> missing;
  /// Of each frame and well, in hundredths of a degree; empty where each frame has one for all of
  /// its wells.
  std::vector<std::uint16_t> temperatures;
};

}  // namespace vex2::lab
