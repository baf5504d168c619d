#include "lab/csv/CsvReader.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <optional>
#include <utility>

#include "lab/SystemError.h"
#include "lab/csv/CsvHeader.h"
#include "lab/csv/CsvSplitter.h"
#include "lab/csv/TextDecoder.h"
#include "vex2/format/HeaderLayout.h"

namespace vex2::lab {

namespace {

// The longest row that is accepted; a row of readings or of a well has about fifty characters.
// Without a limit, a file that is not CSV could be read into memory as one row.
constexpr std::size_t kLongestRow = std::size_t{64} * 1024;
// Milliseconds after which a waiting reader calls `keepsWaiting` again.
constexpr int kMostWait = 100;

class InputFile {
 public:
  explicit InputFile(const std::string& path) : name_(CsvName(path)) {
    if (path.empty()) throw Error(ErrorCode::kUsage, "the name of the CSV file is empty");
    handle_ = path == "-" ? ::dup(STDIN_FILENO) : ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (handle_ < 0) fail();
  }
  ~InputFile() { ::close(handle_); }
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  /// Waits until there is something to read or the input ends. Returns false if `keepsWaiting` ends
  /// the wait.
  bool Await(const std::function<bool()>& keepsWaiting) const {
    pollfd waited{handle_, POLLIN, 0};
    while (keepsWaiting()) {
      const int ready = ::poll(&waited, 1, kMostWait);
      if (ready > 0 || (ready < 0 && errno != EINTR)) return true;  // Read() reports what is wrong
    }
    return false;
  }

  /// Returns the bytes that are available, at most the size of the buffer; empty at the end.
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

// Refuses other kinds of files that users may give in place of a CSV file. Their first bytes show
// the kind.
void refuseOtherKinds(std::string_view begin, const std::string& name) {
  const auto refuse = [&](const char* why, ErrorRemedy remedy = ErrorRemedy::kNone) {
    throw Error(ErrorCode::kDocument, name, why, 0, remedy);
  };
  if (begin.starts_with(kMagic)) {
    refuse("is a plate document, not a CSV file", ErrorRemedy::kExport);
  }
  if (begin.starts_with("PK\x03\x04")) {
    refuse(
        "is a ZIP archive, as workbooks (.xlsx, .ods) are, not a CSV file; save the sheet as CSV");
  }
  if (begin.starts_with("\xD0\xCF\x11\xE0")) {
    refuse("is a workbook (.xls), not a CSV file; save the sheet as CSV");
  }
}

// Turns the text of a file into rows.
class Reader {
 public:
  Reader(std::string name, std::vector<std::string_view> columns, const CsvWishes& wishes,
         const std::function<void(const CsvRow&)>& take)
      : name_(std::move(name)),
        format_(wishes.format),
        take_(take),
        header_(allOf(columns, wishes.optionalColumns), columns.size(), wishes.format),
        mark_(wishes.format.decimalMark) {}

  /// Takes the next part of the text. `isEnd` says whether it is the last part.
  void Add(std::string_view text, bool isEnd) {
    head_ += text;
    if (!splitter_ && !begin(isEnd)) return;
    bool good = splitter_->Feed(std::exchange(head_, {}));
    if (good && isEnd) good = splitter_->Finish();
    for (const CsvSplitter::Row& row : splitter_->Take()) add(row);
    if (!good) {
      RefuseNext(
          "a quote is misplaced; put a field that contains quotes in quotes, and double each quote "
          "in it");
    }
    if (splitter_->UnfinishedBytes() > kLongestRow) RefuseNext("is too long");
  }

  [[noreturn]] void RefuseNext(const std::string& why, ErrorRemedy remedy = ErrorRemedy::kNone,
                               std::optional<std::uint64_t> offset = std::nullopt) const {
    throw Error(ErrorCode::kDocument, name_, fmt::format("row {}: {}", number_ + 1, why), offset,
                remedy);
  }
  std::size_t RowCount() const { return number_; }

 private:
  static std::vector<std::string_view> allOf(std::vector<std::string_view> needed,
                                             const std::vector<std::string_view>& optional) {
    needed.insert(needed.end(), optional.begin(), optional.end());
    return needed;
  }

  // Collects text until the first line is complete, and finds the delimiter in it. Returns false if
  // more text is needed.
  bool begin(bool isEnd) {
    head_.erase(0, std::min(head_.find_first_not_of("\r\n"), head_.size()));
    const std::size_t end = endOfLine();
    if (end == std::string::npos && !isEnd && head_.size() <= kLongestRow) return false;
    char delimiter = format_.delimiter;
    const std::string_view line = std::string_view(head_).substr(0, end);
    const char stated = statedDelimiter(line);
    if (delimiter == 0) delimiter = stated;
    if (delimiter == 0) {
      const auto found = header_.DelimiterOf(line);
      if (!found) {
        RefuseNext("it cannot be told whether commas, semicolons or tabs separate the fields",
                   ErrorRemedy::kGiveDelimiter);
      }
      delimiter = *found;
    }
    if (stated != 0) head_.erase(0, line.size());
    if (delimiter == ',' && format_.decimalMark == 0) mark_ = DecimalMark('.');
    splitter_.emplace(delimiter);
    delimiter_ = delimiter;
    return true;
  }

  // The end of the first line; line ends within quotes do not count.
  std::size_t endOfLine() const {
    bool isQuoted = false;
    for (std::size_t i = 0; i < head_.size(); ++i) {
      if (head_[i] == '"') isQuoted = !isQuoted;
      if (!isQuoted && (head_[i] == '\r' || head_[i] == '\n')) return i;
    }
    return std::string::npos;
  }

  // The delimiter in the line "sep=;" that spreadsheets put before the column names; 0 if `line` is
  // not such a line.
  static char statedDelimiter(std::string_view line) {
    constexpr std::string_view kStated = "sep=";
    const bool isStated = line.size() == kStated.size() + 1 && line.starts_with(kStated);
    return isStated ? line.back() : '\0';
  }

  void add(const CsvSplitter::Row& row) {
    if (number_ == 0) {
      if (const auto why = header_.Find(row)) RefuseNext(*why);
      ++number_;
      const std::vector<std::string> unused = header_.Unused(row);
      if (!unused.empty() && format_.onUnused) format_.onUnused(name_, unused);
      return;
    }
    // Skip rows that consist only of delimiters. Spreadsheets write them for rows whose cells were
    // emptied.
    const auto isEmpty = [](const std::string& field) { return field.empty(); };
    if (row.size() > 1 && std::all_of(row.begin(), row.end(), isEmpty)) {
      ++number_;
      return;
    }
    if (row.size() != header_.Width()) {
      const bool mayBeDecimals = delimiter_ == ',' && row.size() > header_.Width();
      RefuseNext(
          fmt::format("has {} fields where the first row has {}", row.size(), header_.Width()),
          mayBeDecimals ? ErrorRemedy::kQuoteDecimals : ErrorRemedy::kNone);
    }
    std::vector<std::string_view> fields = header_.FieldsOf(row);
    for (const std::string_view field : fields) {
      if (field.find('\0') != std::string_view::npos) RefuseNext("holds a zero byte");
    }
    ++number_;
    take_(CsvRow(name_, number_, std::move(fields), header_.Columns(), mark_));
  }

  std::string name_;
  const CsvFormat& format_;
  const std::function<void(const CsvRow&)>& take_;
  CsvHeader header_;
  DecimalMark mark_;
  std::string head_;
  std::optional<CsvSplitter> splitter_;
  char delimiter_ = 0;
  std::size_t number_ = 0;
};

[[noreturn]] void refuseBytes(const Reader& reader, const TextDecoder& decoder) {
  const bool isGuess = decoder.Encoding() == "UTF-8";
  reader.RefuseNext(fmt::format("these bytes are not {}", decoder.Encoding()),
                    isGuess ? ErrorRemedy::kGiveLatin1 : ErrorRemedy::kGiveEncoding,
                    decoder.FaultOffset());
}

}  // namespace

std::string CsvName(const std::string& path) {
  return path == "-" ? "standard input" : path;
}

bool ReadCsv(const std::string& path, const std::vector<std::string_view>& columns,
             const std::function<void(const CsvRow&)>& take, const CsvWishes& wishes) {
  TextDecoder decoder(wishes.format.encoding);
  InputFile file(path);
  Reader reader(CsvName(path), columns, wishes, take);
  std::string bytes;
  bool hasBegun = false;
  for (bool atEnd = false; !atEnd;) {
    if (wishes.keepsWaiting && !file.Await(wishes.keepsWaiting)) return false;
    const std::string_view more = file.Read();
    atEnd = more.empty();
    bytes += more;
    // The first bytes show the kind of file, and a pipe may return them one by one.
    if (!hasBegun && bytes.size() < TextDecoder::kBeginSize && !atEnd) continue;
    if (!std::exchange(hasBegun, true)) refuseOtherKinds(bytes, CsvName(path));
    std::string text = decoder.Decode(std::exchange(bytes, {}));
    if (atEnd) text += decoder.Finish();
    const bool isFaulty = decoder.FaultOffset().has_value();
    reader.Add(text, atEnd && !isFaulty);
    if (isFaulty) refuseBytes(reader, decoder);
  }
  if (reader.RowCount() == 0) throw Error(ErrorCode::kDocument, CsvName(path), "is empty");
  return true;
}

}  // namespace vex2::lab
