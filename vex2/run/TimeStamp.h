#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"

/// A date and time of day in six bytes. Applications define their order and meaning; the library
/// stores and returns them unchanged.
struct VEX2_API TimeStamp {
  std::uint8_t fields[6] = {};  ///< six bytes, stored unchanged

  /// Whether all six bytes are equal.
  friend bool operator==(const TimeStamp&, const TimeStamp&) = default;
};
