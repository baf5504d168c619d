#pragma once

#include "vex2/container/ScalarComponent.h"

/// A component that holds one 32-bit float. Floats are the only little-endian values in the file.
class VEX2_API CFloatValueComp final : public vex2::ScalarComponent<float> {
 public:
  using ScalarComponent::ScalarComponent;
};
