#include "tests/reliability/Structure.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace vex2::test {
namespace {

constexpr std::size_t kHeader = 1024;

template <std::size_t Count>
bool isOneOf(const std::array<std::string_view, Count>& tags, std::string_view tag) {
  return std::find(tags.begin(), tags.end(), tag) != tags.end();
}

constexpr std::array<std::string_view, 12> kLists = {
    "GLBL", "SPEC", "CNTL", "CPLT", "CPNM", "DETT", "CALI", "DETL", "DETX", "RqDy", "CELS", "MPLC"};
constexpr std::array<std::string_view, 5> kBlocks = {"RAWa", "REPr", "REPn", "REPd", "REPt"};

// A walk over the bytes of a document. After it reached the end, every read fails.
class Walk {
 public:
  explicit Walk(const Bytes& bytes) : bytes_(bytes) {}

  Structure All() {
    header();
    while (good_ && at_ + 8 <= bytes_.size()) record();
    std::sort(found_.bytes.begin(), found_.bytes.end());
    return std::move(found_);
  }

 private:
  std::uint64_t number(std::size_t width) {
    if (at_ + width > bytes_.size()) good_ = false;
    if (!good_) return 0;
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i) value = value << 8U | bytes_[at_ + i];
    at_ += width;
    return value;
  }
  std::uint64_t field(std::size_t width, const std::string& what) {
    mark(width);
    if (at_ + width <= bytes_.size()) found_.fields.push_back({at_, width, what});
    return number(width);
  }
  void mark(std::size_t count) {
    for (std::size_t at = at_; at < std::min(at_ + count, bytes_.size()); ++at) {
      found_.bytes.push_back(at);
    }
  }
  void skip(std::uint64_t count) {
    if (count > bytes_.size() - at_) good_ = false;
    if (good_) at_ += count;
  }

  void header() {
    const std::size_t start = at_;
    mark(20);
    skip(20);
    const std::uint64_t rows = field(2, "header rows");
    mark(50 + 4 * rows);
    if (good_) at_ = start;
    skip(std::max<std::uint64_t>(kHeader, 72 + 4 * rows));
  }

  void record() {
    mark(4);
    const std::string tag(bytes_.begin() + static_cast<std::ptrdiff_t>(at_),
                          bytes_.begin() + static_cast<std::ptrdiff_t>(at_ + 4));
    skip(4);
    const std::uint64_t length = field(4, tag + " length");
    if (!good_ || length == 0) return;
    if (isOneOf(kLists, tag)) {
      records(field(2, tag + " count"));
    } else if (tag == "CELL") {
      const std::uint64_t count = field(2, tag + " count");
      skip(5);
      records(count);
    } else if (tag == "RQPl") {
      field(2, tag + " count");
      plate();
    } else if (isOneOf(kBlocks, tag)) {
      block(tag, length);
    } else if (tag == "PDYE" || tag == "BKGD") {
      spectra(tag);
    } else {
      skip(length);
    }
  }
  void records(std::uint64_t count) {
    for (; good_ && count > 0 && at_ + 8 <= bytes_.size(); --count) record();
  }
  void plate() {
    header();
    while (good_ && at_ + 8 <= bytes_.size()) {
      const bool isLast = std::equal(bytes_.begin() + static_cast<std::ptrdiff_t>(at_),
                                     bytes_.begin() + static_cast<std::ptrdiff_t>(at_ + 4), "EOPl");
      record();
      if (isLast) return;
    }
  }
  void block(const std::string& tag, std::uint64_t length) {
    mark(2);
    if (number(2) >= 2) {
      field(2, tag + " time block size");
      skip(12);
    }
    const std::uint64_t wells = field(2, tag + " wells");
    skip(2 * wells);
    if (wells != 0 && length > 18) skip((length - 18) / (80 * wells) * 80 * wells);
  }
  void spectra(const std::string& tag) {
    const bool isDye = tag == "PDYE";
    skip(8);
    const std::uint64_t entries = field(2, tag + " entries");
    skip(62);
    for (std::uint64_t entry = 0; good_ && entry < entries; ++entry) {
      skip(8);
      skip(field(1, tag + " name length"));
      skip(isDye ? 6 : 0);
      skip(4 * field(1, tag + " values"));
    }
  }

  const Bytes& bytes_;
  std::size_t at_ = 0;
  bool good_ = true;
  Structure found_;
};

}  // namespace

Structure StructureOf(const Bytes& document) {
  return Walk(document).All();
}

}  // namespace vex2::test
