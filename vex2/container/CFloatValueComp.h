#pragma once

#include "vex2/container/ScalarComponent.h"

/// A component that holds one 32-bit float, little-endian in the file as nothing else is.
class VEX2_API CFloatValueComp final : public vex2::ScalarComponent<float> {
 public:
  using ScalarComponent::ScalarComponent;
};
