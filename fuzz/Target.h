#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/Require.h"
#include "tests/support/MemoryFiles.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::fuzz {

/// The files of one execution: in memory, empty, and none past a megabyte, so that the zeros that a
/// short record can promise do not take the time of a thousand inputs. Installed from the first
/// call on, with a host that shows nothing.
test::MemoryFiles& NewFiles();

inline constexpr const char* kDocument = "/fuzz/document.vex";
inline constexpr const char* kSaved = "/fuzz/saved.vex";

/// Decisions that a target draws from the front of its input; zeros when that is used up.
class Script {
 public:
  Script(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}

  bool IsOver() const { return at_ == end_; }
  unsigned Byte() { return at_ != end_ ? *at_++ : 0U; }
  std::uint16_t Short() {
    const unsigned high = Byte();
    return static_cast<std::uint16_t>(high << 8U | Byte());
  }
  /// The next `length` bytes, fewer at the end.
  std::string Text(std::size_t length) {
    const std::size_t count = std::min(length, static_cast<std::size_t>(end_ - at_));
    const std::string text(at_, at_ + count);
    at_ += count;
    return text;
  }
  /// A text that says its length in its first byte.
  std::string Text() { return Text(Byte()); }
  /// All that is left.
  test::Bytes Rest() {
    test::Bytes rest(at_, end_);
    at_ = end_;
    return rest;
  }

 private:
  const std::uint8_t* at_;
  const std::uint8_t* end_;
};

/// Input as a document: as it is when it begins like one, else as records behind the header of a
/// study ("RQSt" in front of them) or of a new document. Headers are a kilobyte of zeros, at which
/// mutations would be wasted.
test::Bytes DocumentOf(const test::Bytes& input);

/// Opens and reads; requires that the answer is one of the reader's.
int Read(Vex2FileManager& document, const char* path);

/// Whether the document has a usage table that takes the time of a hundred inputs, and nothing else
/// to look at.
inline bool IsTooLarge(const Vex2FileManager& document) {
  return document.GetHeaderRows() > 1000;
}

}  // namespace vex2::fuzz
