#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/csv/CsvReader.h"
#include "lab/csv/CsvSplitter.h"

namespace vex2::lab {

/// Finds the requested columns of a file by the row of its column names.
class CsvHeader {
 public:
  /// The first `needed` of `columns` must be in the file; the others are optional. `format` has the
  /// names that the file uses for columns, and must outlive the header.
  CsvHeader(std::vector<std::string_view> columns, std::size_t needed, const CsvFormat& format)
      : columns_(std::move(columns)), needed_(needed), format_(format), given_(format.names) {}

  const std::vector<std::string_view>& Columns() const { return columns_; }

  /// Finds the columns. If that is not possible, returns the reason; otherwise nothing.
  std::optional<std::string> Find(const CsvSplitter::Row& names);
  /// The names of columns that were not requested, in the order of the file, except empty names.
  std::vector<std::string> Unused(const CsvSplitter::Row& names) const;
  /// The number of fields in each row.
  std::size_t Width() const { return width_; }
  /// The fields of the requested columns. If the file lacks an optional column, the view of its
  /// field has no data.
  std::vector<std::string_view> FieldsOf(const CsvSplitter::Row& row) const;

  /// The delimiter of a file with this first line: the one with which most of the requested columns
  /// are found. Returns nothing if several delimiters find equally many.
  std::optional<char> DelimiterOf(std::string_view line) const;

 private:
  std::vector<std::size_t> placesOf(std::string_view column, const CsvSplitter::Row& names) const;
  std::string whyMissing(std::string_view column, const CsvSplitter::Row& names) const;

  std::vector<std::string_view> columns_;
  std::size_t needed_;
  const CsvFormat& format_;
  const CsvNames& given_;
  std::vector<std::optional<std::size_t>> places_;
  std::size_t width_ = 0;
};

}  // namespace vex2::lab
