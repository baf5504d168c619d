#pragma once

#include <cstdint>

#include "vex2/container/ScalarComponent.h"

/// A component that holds one unsigned 16-bit value, big-endian in the file.
class VEX2_API CShortValueComp final : public vex2::ScalarComponent<std::uint16_t> {
 public:
  using ScalarComponent::ScalarComponent;
};
