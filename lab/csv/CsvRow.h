#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lab/Error.h"
#include "lab/csv/DecimalMark.h"

namespace vex2::lab {

/// One row of a CSV file, reduced to the requested columns. The columns count from 0 in the order
/// of the request. A row is valid only during the call to which it is passed.
class CsvRow {
 public:
  /// In `fields`, an optional column that the file lacks has a view without data. All arguments
  /// must outlive the row.
  CsvRow(std::string_view file, std::size_t number, std::vector<std::string_view> fields,
         const std::vector<std::string_view>& columns, DecimalMark& mark)
      : file_(file), number_(number), fields_(std::move(fields)), columns_(columns), mark_(mark) {}

  /// The field of the column, without blanks around it unless it is quoted; empty if the file lacks
  /// the column.
  std::string_view Text(std::size_t column) const { return fields_[column]; }
  /// Whether the file has the column.
  bool Has(std::size_t column) const { return fields_[column].data() != nullptr; }
  /// The field as a finite decimal number. Throws an error if it is not one.
  double AnyDecimal(std::size_t column) const;
  /// The field as a finite decimal number from 0 to `most`. Throws an error if it is not one.
  double Decimal(std::size_t column, double most) const;
  /// The field as a whole number from `least` to `most`. Throws an error if it is not one.
  unsigned Whole(std::size_t column, unsigned least, unsigned most) const;
  /// `text`, a number within the field of `column`, with a point as its decimal mark. If `text` is
  /// not a number, returns it unchanged. Throws an error if the decimal mark of the number is not
  /// clear.
  std::string PointText(std::size_t column, std::string_view text) const;

  /// The row's number. The row of column names is row 1; empty lines do not count.
  std::size_t Number() const { return number_; }
  /// Throws an error of class `kDocument` that names the file and the row.
  [[noreturn]] void Refuse(const std::string& why, ErrorRemedy remedy = ErrorRemedy::kNone) const;
  /// Throws an error of class `kDocument` that names the file and the row, and quotes the field of
  /// `column`.
  [[noreturn]] void RefuseField(std::size_t column, const std::string& why,
                                ErrorRemedy remedy = ErrorRemedy::kNone) const;

 private:
  std::string_view file_;
  std::size_t number_;
  std::vector<std::string_view> fields_;
  const std::vector<std::string_view>& columns_;
  DecimalMark& mark_;
};

}  // namespace vex2::lab
