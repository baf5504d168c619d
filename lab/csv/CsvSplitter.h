#pragma once

#include <csv.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vex2::lab {

/// Splits text into rows of fields as it arrives. Lines may end in any way; empty lines are
/// skipped.
class CsvSplitter {
 public:
  using Row = std::vector<std::string>;

  explicit CsvSplitter(char delimiter);
  ~CsvSplitter() { csv_free(&parser_); }
  CsvSplitter(const CsvSplitter&) = delete;
  CsvSplitter& operator=(const CsvSplitter&) = delete;

  /// Takes the next part of the text. Returns false if it is not CSV; the rows before the error are
  /// still available.
  bool Feed(std::string_view text);
  /// Takes the end of the text, which may be within a row. Returns false if the text is not CSV.
  bool Finish();

  /// The rows that were completed since the last call.
  std::vector<Row> Take();
  std::size_t UnfinishedBytes() const { return rowBytes_ + parser_.entry_pos; }

 private:
  static void onField(void* text, std::size_t length, void* self) noexcept;
  static void onRow(int end, void* self) noexcept;
  template <typename Operation>
  void guarded(Operation operation) noexcept;
  void requireMemory();

  csv_parser parser_{};
  Row row_;
  std::size_t rowBytes_ = 0;
  std::vector<Row> rows_;
  bool outOfMemory_ = false;
};

}  // namespace vex2::lab
