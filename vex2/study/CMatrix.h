#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "vex2/framework/Export.h"
#include "vex2/study/CVector.h"

/// Rows of numbers. Copies are independent. Indexes count from 0.
class VEX2_API CMatrix {
 public:
  CMatrix() = default;
  /// Makes `rows` rows of `columns` zeros.
  CMatrix(int rows, int columns) : CMatrix(static_cast<std::size_t>(rows)) {
    const CVector row(std::vector<double>(static_cast<std::size_t>(columns)));
    std::fill_n(rows_.get(), rowCount_, row);
  }
  /// Copies all rows.
  CMatrix(const CMatrix& other) : CMatrix(other.rowCount_) {
    std::copy_n(other.rows_.get(), rowCount_, rows_.get());
  }
  /// Takes the rows of `other`, which has none afterwards.
  CMatrix(CMatrix&& other) noexcept
      : rows_(std::move(other.rows_)), rowCount_(std::exchange(other.rowCount_, 0)) {}
  /// Replaces all rows by those of `other`.
  CMatrix& operator=(CMatrix other) noexcept {
    rows_ = std::move(other.rows_);
    rowCount_ = std::exchange(other.rowCount_, 0);
    return *this;
  }
  ~CMatrix() = default;

  /// The number of rows.
  int GetRowCount() const { return static_cast<int>(rowCount_); }
  /// The number of columns of the first row; 0 if there are no rows.
  int GetColumnCount() const { return rowCount_ == 0 ? 0 : rows_[0].GetSize(); }
  /// The row at `row`, from 0, which must be below the row count.
  CVector& operator[](int row) { return rows_[static_cast<std::size_t>(row)]; }
  /// The row at `row`, from 0, which must be below the row count.
  const CVector& operator[](int row) const { return rows_[static_cast<std::size_t>(row)]; }

 private:
  explicit CMatrix(std::size_t rows) : rows_(new CVector[rows]), rowCount_(rows) {}

  std::unique_ptr<CVector[]> rows_;
  std::size_t rowCount_ = 0;
};
