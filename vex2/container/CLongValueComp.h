#pragma once

#include <cstdint>

#include "vex2/container/ScalarComponent.h"

/// A component that holds one unsigned 32-bit value, big-endian in the file.
class VEX2_API CLongValueComp final : public vex2::ScalarComponent<std::uint32_t> {
 public:
  using ScalarComponent::ScalarComponent;
};
