#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/exchange/CsvReader.h"
#include "lab/exchange/CsvSplitter.h"

namespace vex2::lab {

/// Where the columns that are asked for stand in a file, by the row of its column names.
class CsvHeader {
 public:
  /// The first `needed` of the columns must be in the file. `format` says what the file calls them,
  /// and must outlive the header.
  CsvHeader(std::vector<std::string_view> columns, std::size_t needed, const CsvFormat& format)
      : columns_(std::move(columns)), needed_(needed), format_(format), given_(format.names) {}

  const std::vector<std::string_view>& Columns() const { return columns_; }

  /// Finds the columns. Returns why they cannot be found, or nothing.
  std::optional<std::string> Find(const CsvSplitter::Row& names);
  /// The names of columns that were not asked for, in the file's order; those without a name are
  /// left out.
  std::vector<std::string> Unused(const CsvSplitter::Row& names) const;
  /// How many fields each row has.
  std::size_t Width() const { return width_; }
  /// The fields of the columns, without data for an optional one that the file lacks.
  std::vector<std::string_view> FieldsOf(const CsvSplitter::Row& row) const;

  /// The delimiter of a file with this first line: the one under which most of the columns are
  /// found. Returns nothing if it can be more than one.
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
