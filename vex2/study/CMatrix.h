#pragma once

#include <vector>

#include "vex2/framework/Export.h"
#include "vex2/study/CVector.h"

/// Rows of numbers. A value: copies are independent. Indexes count from 0.
class VEX2_API CMatrix {
 public:
  CMatrix() = default;
  CMatrix(int rows, int columns)
      : rows_(static_cast<std::size_t>(rows),
              CVector(std::vector<double>(static_cast<std::size_t>(columns)))) {}

  int GetRowCount() const { return static_cast<int>(rows_.size()); }
  int GetColumnCount() const { return rows_.empty() ? 0 : rows_.front().GetSize(); }
  /// `row` must be below the row count.
  CVector& operator[](int row) { return rows_[static_cast<std::size_t>(row)]; }
  const CVector& operator[](int row) const { return rows_[static_cast<std::size_t>(row)]; }

 private:
  std::vector<CVector> rows_;
};
