#pragma once

#include <cstdint>
#include <type_traits>

#include "vex2/framework/Export.h"

/// What one well gave in one frame. The first 40 values are stored in documents; the last four
/// live in memory alone and are 0 in every record that was read.
struct VEX2_API Vex2WellRecord {
  /// `leading[0]` is not 0 in a record that counts as filled. `leading[4]` is the well's first
  /// reading; 0 or 65000 there marks the first frame of a melting stage. The others belong to the
  /// instrument.
  std::uint16_t leading[8] = {};
  std::uint16_t data[36] = {};

  friend bool operator==(const Vex2WellRecord&, const Vex2WellRecord&) = default;
};

static_assert(sizeof(Vex2WellRecord) == 88 && std::is_trivially_copyable_v<Vex2WellRecord>);
