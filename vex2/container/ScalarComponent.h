#pragma once

#include <string_view>

#include "vex2/container/CComponent.h"

namespace vex2 {

/// The base of components whose whole body is one value of fixed size.
template <typename Value>
class VEX2_API ScalarComponent : public CComponent {
 public:
  explicit ScalarComponent(std::string_view tag, Value value = Value{});

  Value GetValue() const { return value_; }
  void SetValue(Value value) { value_ = value; }

  CComponent& Assign(const CComponent& source) override;
  int WriteBody(CFile* file) override;
  int ReadBody(CFile* file) override;

 private:
  Value value_;
};

}  // namespace vex2
