#pragma once

#include <cstdint>

#include "vex2/container/ScalarComponent.h"

/// A component that holds one byte.
class VEX2_API CByteValueComp final : public vex2::ScalarComponent<std::uint8_t> {
 public:
  using ScalarComponent::ScalarComponent;
};
