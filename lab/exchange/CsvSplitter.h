#pragma once

#include <csv.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vex2::lab {

/// Turns text into rows of fields as it arrives. Lines end in any way; empty ones are no rows.
class CsvSplitter {
 public:
  using Row = std::vector<std::string>;

  explicit CsvSplitter(char delimiter);
  ~CsvSplitter() { csv_free(&parser_); }
  CsvSplitter(const CsvSplitter&) = delete;
  CsvSplitter& operator=(const CsvSplitter&) = delete;

  /// Takes further text. False when it is no CSV; the rows before the mistake are there also then.
  bool Feed(std::string_view text);
  /// Takes the end of the text, which may end in the midst of a row. False when it is no CSV.
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
