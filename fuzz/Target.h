#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/Require.h"
#include "tests/support/MemoryFiles.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::fuzz {

/// New, empty files in memory for one execution. Their size is limited to a megabyte, because
/// writing the zeros of a record with a large declared length would take as long as a thousand
/// inputs. The first call installs them, with a host that shows nothing.
test::MemoryFiles& NewFiles();

inline constexpr const char* kDocument = "/fuzz/document.vex";
inline constexpr const char* kSaved = "/fuzz/saved.vex";

/// Decisions that a target reads from the beginning of its input; zeros after the end of the input.
class Script {
 public:
  Script(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}

  bool IsOver() const { return at_ == end_; }
  unsigned Byte() { return at_ != end_ ? *at_++ : 0U; }
  std::uint16_t Short() {
    const unsigned high = Byte();
    return static_cast<std::uint16_t>(high << 8U | Byte());
  }
  /// The next `length` bytes, or all that are left if these are fewer.
  std::string Text(std::size_t length) {
    const std::size_t count = std::min(length, static_cast<std::size_t>(end_ - at_));
    const std::string text(at_, at_ + count);
    at_ += count;
    return text;
  }
  /// A text whose first byte is its length.
  std::string Text() { return Text(Byte()); }
  /// The rest of the input.
  test::Bytes Rest() {
    test::Bytes rest(at_, end_);
    at_ = end_;
    return rest;
  }

 private:
  const std::uint8_t* at_;
  const std::uint8_t* end_;
};

/// The input as a document. Input that begins like a document is unchanged; other input becomes the
/// records after a header, that of a study if the input begins with "RQSt", otherwise that of a new
/// document. Headers are mostly zeros, so mutating them would waste time.
test::Bytes DocumentOf(const test::Bytes& input);

/// Opens and reads a document, and requires that the status is one that readers return.
int Read(Vex2FileManager& document, const char* path);

/// Whether the document's usage table is so large that reading it takes as long as a hundred other
/// inputs, without testing anything else.
inline bool IsTooLarge(const Vex2FileManager& document) {
  return document.GetHeaderRows() > 1000;
}

}  // namespace vex2::fuzz
