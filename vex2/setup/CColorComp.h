#pragma once

#include <array>
#include <cstdint>

#include "vex2/container/ScalarComponent.h"

/// A colour, "COLR": three bytes, whose order applications define.
class VEX2_API CColorComp final : public vex2::ScalarComponent<std::array<std::uint8_t, 3>> {
 public:
  CColorComp();
  /// Holds these three bytes.
  explicit CColorComp(const std::array<std::uint8_t, 3>& color);
};
