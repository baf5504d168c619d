#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lab/Error.h"
#include "lab/exchange/DecimalMark.h"

namespace vex2::lab {

/// One row of a CSV file, reduced to the columns that were asked for. Valid during the call that
/// hands it out. Columns are counted from 0 in the order of asking.
class CsvRow {
 public:
  /// A field of an optional column that the file lacks has no data. All must outlive the row.
  CsvRow(std::string_view file, std::size_t number, std::vector<std::string_view> fields,
         const std::vector<std::string_view>& columns, DecimalMark& mark)
      : file_(file), number_(number), fields_(std::move(fields)), columns_(columns), mark_(mark) {}

  /// The field of the column, without blanks around it unless it is quoted; empty where the file
  /// lacks the column.
  std::string_view Text(std::size_t column) const { return fields_[column]; }
  /// Whether the file has the column.
  bool Has(std::size_t column) const { return fields_[column].data() != nullptr; }
  /// The field as a finite decimal number. Throws otherwise.
  double AnyDecimal(std::size_t column) const;
  /// The field as a finite decimal number from 0 to `most`. Throws otherwise.
  double Decimal(std::size_t column, double most) const;
  /// The field as a whole number from `least` to `most`. Throws otherwise.
  unsigned Whole(std::size_t column, unsigned least, unsigned most) const;
  /// `text`, a number within the field of `column`, with a point as its decimal mark. Throws when
  /// it cannot be told what it stands for. What is no number comes back as it is.
  std::string PointText(std::size_t column, std::string_view text) const;

  /// The row's number. The row of column names is row 1; empty lines do not count.
  std::size_t Number() const { return number_; }
  /// Throws an error of the document's kind that names file and row.
  [[noreturn]] void Refuse(const std::string& why, ErrorRemedy remedy = ErrorRemedy::kNone) const;
  /// Throws such an error about one field, which is quoted.
  [[noreturn]] void RefuseField(std::size_t column, const std::string& why,
                                ErrorRemedy remedy = ErrorRemedy::kNone) const;

 private:
  std::string_view file_;
  std::size_t number_;
  std::vector<std::string_view> fields_;
  const std::vector<std::string_view>& columns_;
  DecimalMark& mark_;
};

/// `text` in quotes for an error message, cut short where it is long.
std::string Quoted(std::string_view text);

}  // namespace vex2::lab
