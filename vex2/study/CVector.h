#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "vex2/framework/Export.h"

/// A row of numbers. Copies are independent. Indexes count from 0.
class VEX2_API CVector {
 public:
  CVector() = default;
  /// Copies the values.
  explicit CVector(const std::vector<double>& values) : CVector(values.data(), values.size()) {}
  /// Copies all values.
  CVector(const CVector& other) : CVector(other.values_.get(), other.size_) {}
  /// Takes the values of `other`, which has none afterwards.
  CVector(CVector&& other) noexcept
      : values_(std::move(other.values_)), size_(std::exchange(other.size_, 0)) {}
  /// Replaces all values by those of `other`.
  CVector& operator=(CVector other) noexcept {
    values_ = std::move(other.values_);
    size_ = std::exchange(other.size_, 0);
    return *this;
  }
  ~CVector() = default;

  /// Returns a copy, which the caller owns.
  std::unique_ptr<CVector> Clone() const { return std::make_unique<CVector>(*this); }
  /// The number of values.
  int GetSize() const { return static_cast<int>(size_); }
  /// The value at `index`, from 0, which must be below the size.
  double& operator[](int index) { return values_[static_cast<std::size_t>(index)]; }
  /// The value at `index`, from 0, which must be below the size.
  double operator[](int index) const { return values_[static_cast<std::size_t>(index)]; }

 private:
  CVector(const double* values, std::size_t size) : values_(new double[size]), size_(size) {
    std::copy_n(values, size, values_.get());
  }

  std::unique_ptr<double[]> values_;
  std::size_t size_ = 0;
};
