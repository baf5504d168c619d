#include "lab/csv/CsvSplitter.h"

#include <new>
#include <utility>

namespace vex2::lab {

CsvSplitter::CsvSplitter(char delimiter) {
  if (csv_init(&parser_, CSV_STRICT | CSV_STRICT_FINI) != 0) throw std::bad_alloc();
  csv_set_delim(&parser_, static_cast<unsigned char>(delimiter));
}

bool CsvSplitter::Feed(std::string_view text) {
  const bool good =
      csv_parse(&parser_, text.data(), text.size(), onField, onRow, this) == text.size();
  requireMemory();
  return good;
}

bool CsvSplitter::Finish() {
  const bool good = csv_fini(&parser_, onField, onRow, this) == 0;
  requireMemory();
  return good;
}

std::vector<CsvSplitter::Row> CsvSplitter::Take() {
  return std::exchange(rows_, {});
}

void CsvSplitter::requireMemory() {
  if (outOfMemory_ || csv_error(&parser_) == CSV_ENOMEM) throw std::bad_alloc();
}

void CsvSplitter::onField(void* text, std::size_t length, void* self) noexcept {
  auto& splitter = *static_cast<CsvSplitter*>(self);
  splitter.guarded([&] {
    splitter.row_.emplace_back(static_cast<const char*>(text), length);
    splitter.rowBytes_ += length + 1;
  });
}

void CsvSplitter::onRow(int /*end*/, void* self) noexcept {
  auto& splitter = *static_cast<CsvSplitter*>(self);
  splitter.guarded([&] { splitter.rows_.push_back(std::exchange(splitter.row_, {})); });
  splitter.rowBytes_ = 0;
}

// Catches the exceptions of `operation`: the parser is written in C, and no exception may pass
// through it.
template <typename Operation>
void CsvSplitter::guarded(Operation operation) noexcept {
  try {
    operation();
  } catch (...) {
    outOfMemory_ = true;
  }
}

}  // namespace vex2::lab
