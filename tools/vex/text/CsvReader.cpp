#include "tools/vex/text/CsvReader.h"

#include <csv.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <new>
#include <optional>
#include <utility>

#include "tools/vex/Errors.h"
#include "tools/vex/text/Text.h"

namespace vex2::tool {

namespace {

// A row of readings or of a well is some fifty characters. A file that is no CSV may have no line
// end at all, and must not be taken into memory in the search for one.
constexpr std::size_t kLongestRow = std::size_t{64} * 1024;
constexpr int kMostWait = 100;  // milliseconds until a waiting reader asks whether to go on
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

class InputFile {
 public:
  explicit InputFile(const std::string& path) : name_(CsvName(path)) {
    handle_ = path == "-" ? ::dup(STDIN_FILENO) : ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (handle_ < 0) fail();
  }
  ~InputFile() { ::close(handle_); }
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  /// Waits until there is something to read, or the end. False when `keepsWaiting` says no first.
  bool Await(const std::function<bool()>& keepsWaiting) const {
    pollfd waited{handle_, POLLIN, 0};
    while (keepsWaiting()) {
      const int ready = ::poll(&waited, 1, kMostWait);
      if (ready > 0 || (ready < 0 && errno != EINTR)) return true;  // what is wrong, Read will meet
    }
    return false;
  }

  /// What is there, at most the buffer's size; empty at the end.
  std::string_view Read() {
    for (;;) {
      const ssize_t count = ::read(handle_, buffer_.data(), buffer_.size());
      if (count >= 0) return {buffer_.data(), static_cast<std::size_t>(count)};
      if (errno != EINTR) fail();
    }
  }

 private:
  [[noreturn]] void fail() const { throw SystemError(name_, errno); }

  std::string name_;
  int handle_ = -1;
  std::array<char, 16384> buffer_;
};

// Turns bytes into rows of fields. Nothing may be thrown through the parser, which is C.
class Splitter {
 public:
  Splitter() {
    if (csv_init(&parser_, CSV_STRICT | CSV_STRICT_FINI) != 0) throw std::bad_alloc();
  }
  ~Splitter() { csv_free(&parser_); }
  Splitter(const Splitter&) = delete;
  Splitter& operator=(const Splitter&) = delete;

  using Row = std::vector<std::string>;

  /// Takes further bytes, or the end when there are none. False when they are no CSV; the rows
  /// before the mistake are there also then.
  bool Feed(std::string_view bytes) {
    const bool good = bytes.empty() ? csv_fini(&parser_, onField, onRow, this) == 0
                                    : csv_parse(&parser_, bytes.data(), bytes.size(), onField,
                                                onRow, this) == bytes.size();
    if (outOfMemory_ || csv_error(&parser_) == CSV_ENOMEM) throw std::bad_alloc();
    return good;
  }

  /// The rows that were completed since the last call.
  std::vector<Row> Take() { return std::exchange(rows_, {}); }
  std::size_t UnfinishedBytes() const { return rowBytes_ + parser_.entry_pos; }

 private:
  static void onField(void* text, std::size_t length, void* self) noexcept {
    auto& splitter = *static_cast<Splitter*>(self);
    splitter.guarded([&] {
      splitter.row_.emplace_back(static_cast<const char*>(text), length);
      splitter.rowBytes_ += length + 1;
    });
  }
  static void onRow(int /*end*/, void* self) noexcept {
    auto& splitter = *static_cast<Splitter*>(self);
    splitter.guarded([&] { splitter.rows_.push_back(std::exchange(splitter.row_, {})); });
    splitter.rowBytes_ = 0;
  }
  template <typename Operation>
  void guarded(Operation operation) noexcept {
    try {
      operation();
    } catch (...) {
      outOfMemory_ = true;
    }
  }

  csv_parser parser_{};
  Row row_;
  std::size_t rowBytes_ = 0;
  std::vector<Row> rows_;
  bool outOfMemory_ = false;
};

class Table {
 public:
  Table(std::string name, std::vector<std::string_view> columns,
        const std::vector<std::string_view>& optionalColumns)
      : name_(std::move(name)), columns_(std::move(columns)), needed_(columns_.size()) {
    columns_.insert(columns_.end(), optionalColumns.begin(), optionalColumns.end());
  }

  void Add(const Splitter::Row& row, const std::function<void(const CsvRow&)>& take) {
    ++number_;
    if (number_ == 1) {
      takeNames(row);
      return;
    }
    if (row.size() != width_) {
      Refuse(number_, "has " + std::to_string(row.size()) + " fields where the first row has " +
                          std::to_string(width_));
    }
    std::vector<std::string_view> fields;
    for (const std::size_t place : places_) {
      if (place == kNowhere) {
        fields.emplace_back();
        continue;
      }
      if (row[place].find('\0') != std::string::npos) Refuse(number_, "holds a zero byte");
      fields.emplace_back(row[place]);
    }
    take(CsvRow(name_, number_, std::move(fields), columns_));
  }

  std::size_t RowCount() const { return number_; }
  [[noreturn]] void Refuse(std::size_t row, const std::string& why) const {
    throw Error(ExitCode::kDocument, name_, "row " + std::to_string(row) + ": " + why);
  }

 private:
  void takeNames(const Splitter::Row& names) {
    width_ = names.size();
    for (const std::string_view column : columns_) {
      const auto found = std::find(names.begin(), names.end(), column);
      if (found == names.end()) {
        if (places_.size() < needed_) Refuse(1, "has no column " + Quoted(column));
        places_.push_back(kNowhere);
        continue;
      }
      if (std::find(found + 1, names.end(), column) != names.end()) {
        Refuse(1, "has the column " + Quoted(column) + " twice");
      }
      places_.push_back(static_cast<std::size_t>(found - names.begin()));
    }
  }

  static constexpr std::size_t kNowhere = std::string::npos;

  std::string name_;
  std::vector<std::string_view> columns_;
  std::size_t needed_;  ///< of the columns, the first ones
  std::vector<std::size_t> places_;
  std::size_t width_ = 0;
  std::size_t number_ = 0;
};

// The mark may come in pieces when the input is a pipe.
class MarkStripper {
 public:
  /// The bytes behind the mark; `text` must outlive the result.
  std::string_view operator()(std::string_view text) {
    if (done_) return text;
    head_ += text;
    if (!text.empty() && head_.size() < kByteOrderMark.size() &&
        kByteOrderMark.substr(0, head_.size()) == head_) {
      return {};
    }
    done_ = true;
    std::string_view rest = head_;
    if (rest.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
      rest.remove_prefix(kByteOrderMark.size());
    }
    return rest;
  }

 private:
  std::string head_;
  bool done_ = false;
};

}  // namespace

std::string CsvName(const std::string& path) {
  return path == "-" ? "standard input" : path;
}

std::string Quoted(std::string_view text) {
  constexpr std::size_t kMost = 40;
  const std::string shown(text.substr(0, kMost));
  return text.size() > kMost ? "'" + shown + "...'" : "'" + shown + "'";
}

void CsvRow::Refuse(const std::string& why) const {
  throw Error(ExitCode::kDocument, file_, "row " + std::to_string(number_) + ": " + why);
}

void CsvRow::RefuseField(std::size_t column, const std::string& why) const {
  Refuse(std::string(names_[column]) + " " + Quoted(Text(column)) + " " + why);
}

double CsvRow::AnyDecimal(std::size_t column) const {
  const auto value = NumberIn<double>(Text(column));
  if (!value || !std::isfinite(*value)) RefuseField(column, "is no number");
  return *value;
}

double CsvRow::Decimal(std::size_t column, double most) const {
  const double value = AnyDecimal(column);
  if (value < 0) RefuseField(column, "is negative");
  if (value > most) RefuseField(column, "is too large");
  return value;
}

unsigned CsvRow::Whole(std::size_t column, unsigned least, unsigned most) const {
  const std::string_view text = Text(column);
  const auto value = NumberIn<unsigned>(text);
  if (!value || *value < least || *value > most) {
    RefuseField(column,
                "is no whole number from " + std::to_string(least) + " to " + std::to_string(most));
  }
  return *value;
}

bool ReadCsv(const std::string& path, const std::vector<std::string_view>& columns,
             const std::function<void(const CsvRow&)>& take, const CsvWishes& wishes) {
  InputFile file(path);
  Splitter splitter;
  MarkStripper withoutMark;
  Table table(CsvName(path), columns, wishes.optionalColumns);
  for (bool atEnd = false; !atEnd;) {
    if (wishes.keepsWaiting && !file.Await(wishes.keepsWaiting)) return false;
    const std::string_view bytes = file.Read();
    atEnd = bytes.empty();
    const std::string_view rest = withoutMark(bytes);
    bool good = rest.empty() || splitter.Feed(rest);
    if (good && atEnd) good = splitter.Feed({});
    for (const Splitter::Row& row : splitter.Take()) table.Add(row, take);
    if (!good) table.Refuse(table.RowCount() + 1, "a quote stands where none can");
    if (splitter.UnfinishedBytes() > kLongestRow) {
      table.Refuse(table.RowCount() + 1, "is too long");
    }
  }
  if (table.RowCount() == 0) throw Error(ExitCode::kDocument, CsvName(path), "is empty");
  return true;
}

}  // namespace vex2::tool
