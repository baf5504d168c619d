#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "vex2/framework/Export.h"

/// The readings of one well in one frame. Documents store the first 40 values; the last four exist
/// only in memory and are 0 in every record that was read.
struct VEX2_API Vex2WellRecord {
  /// `leading[0]` is nonzero in a record that was filled. `leading[4]` is the well's first reading;
  /// 0 or 65000 there marks the first frame of a melting stage. The instrument defines the others.
  std::uint16_t leading[8] = {};
  std::uint16_t data[36] = {};  ///< the readings; documents store the first 32

  /// Whether all 44 values are equal.
  friend bool operator==(const Vex2WellRecord& one, const Vex2WellRecord& other) {
    // Comparing bytes is correct, because there is no padding, and fast: tables are compared record
    // by record.
    return std::memcmp(&one, &other, sizeof one) == 0;
  }
};

static_assert(sizeof(Vex2WellRecord) == 88 && std::is_trivially_copyable_v<Vex2WellRecord>);
