#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "vex2/framework/Export.h"

/// A row of numbers. A value: copies are independent. Indexes count from 0.
class VEX2_API CVector {
 public:
  CVector() = default;
  explicit CVector(std::vector<double> values) : values_(std::move(values)) {}

  std::unique_ptr<CVector> Clone() const { return std::make_unique<CVector>(*this); }
  int GetSize() const { return static_cast<int>(values_.size()); }
  /// `index` must be below the size.
  double& operator[](int index) { return values_[static_cast<std::size_t>(index)]; }
  double operator[](int index) const { return values_[static_cast<std::size_t>(index)]; }

 private:
  std::vector<double> values_;
};
