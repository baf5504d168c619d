#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vex2::tool {

/// One row of a CSV file, reduced to the columns that were asked for. Valid during the call that
/// hands it out.
class CsvRow {
 public:
  CsvRow(std::string_view file, std::size_t number, std::vector<std::string_view> fields,
         const std::vector<std::string_view>& names)
      : file_(file), number_(number), fields_(std::move(fields)), names_(names) {}

  /// The field of the wanted column `column`, counted from 0 in the order of asking.
  std::string_view Text(std::size_t column) const { return fields_[column]; }
  /// The same as a decimal number, which is finite. Throws otherwise.
  double AnyDecimal(std::size_t column) const;
  /// The same as a decimal number from 0 to `most`. Throws otherwise.
  double Decimal(std::size_t column, double most) const;
  /// The same as a whole number.
  unsigned Whole(std::size_t column, unsigned least, unsigned most) const;

  /// Whether the file has that column; one of the needed columns is always there.
  bool Has(std::size_t column) const { return fields_[column].data() != nullptr; }

  /// The row's number. The row of column names is row 1; empty lines do not count.
  std::size_t Number() const { return number_; }
  /// Throws an error of the document's kind that names file and row.
  [[noreturn]] void Refuse(const std::string& why) const;
  /// The same about one field, which is quoted.
  [[noreturn]] void RefuseField(std::size_t column, const std::string& why) const;

 private:
  std::string_view file_;
  std::size_t number_;
  std::vector<std::string_view> fields_;
  const std::vector<std::string_view>& names_;
};

/// What a reader of CSV may ask for besides the columns that it needs.
struct CsvWishes {
  /// Columns that the file may lack; they are counted behind the needed ones.
  std::vector<std::string_view> optionalColumns;
  /// Asked again and again while a pipe has nothing to read; false ends the reading.
  std::function<bool()> keepsWaiting;
};

/// Reads the CSV file at `path`, or standard input for "-": comma-separated, fields quoted as RFC
/// 4180 has it, lines ended in either way, with or without a byte order mark. The first row names
/// the columns; `columns` must be among them, each once, in any order, and others are passed over.
/// Calls `take` for each further row. Throws an error that names the file, and the row where there
/// is one; also what `take` throws. A pipe's row is handed on as soon as its line has ended. False
/// when the reading was ended by `wishes`.
bool ReadCsv(const std::string& path, const std::vector<std::string_view>& columns,
             const std::function<void(const CsvRow&)>& take, const CsvWishes& wishes = {});

/// What an error message calls a CSV file.
std::string CsvName(const std::string& path);

/// `text` in quotes for an error message, cut short where it is long.
std::string Quoted(std::string_view text);

}  // namespace vex2::tool
