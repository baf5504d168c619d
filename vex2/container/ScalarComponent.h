#pragma once

#include <string_view>

#include "vex2/container/CComponent.h"

namespace vex2 {

/// The base of components whose whole body is one value of fixed size.
template <typename Value>
class VEX2_API ScalarComponent : public CComponent {
 public:
  /// Holds `value`.
  explicit ScalarComponent(std::string_view tag, Value value = Value{});

  /// The value.
  Value GetValue() const { return value_; }
  /// Sets the value.
  void SetValue(Value value) { value_ = value; }

  /// Copies the value of `source` if it has the same tag and class; otherwise does nothing.
  CComponent& Assign(const CComponent& source) override;
  /// Writes the value at the file position. Returns 0, or -200 for a null file.
  int WriteBody(CFile* file) override;
  /// Reads the value at the file position. Returns 0, or -100 for a null file or if the file ends
  /// within the value.
  int ReadBody(CFile* file) override;

 private:
  Value value_;
};

}  // namespace vex2
