#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vex2::lab {

/// Turns the bytes of a text file into UTF-8 as they arrive. A byte order mark says which encoding
/// the file has, and is left out; so do the zero bytes of UTF-16 in front of or after the first
/// character. A file without either is in the encoding that was named.
class TextDecoder {
 public:
  /// The bytes that a file's first call of `Decode` must have, unless the file has fewer.
  static constexpr std::size_t kBeginSize = 4;

  /// `encoding` is what the system knows it by, in any case; empty is UTF-8. Throws an error of the
  /// call when the system does not know it.
  explicit TextDecoder(std::string encoding);
  ~TextDecoder();
  TextDecoder(const TextDecoder&) = delete;
  TextDecoder& operator=(const TextDecoder&) = delete;

  /// The text of further bytes, as far as they are complete characters. Ends before the first byte
  /// that is no character, and is empty from then on.
  std::string Decode(std::string_view bytes);
  /// The same at the file's end, where a character that is not complete is none.
  std::string Finish();

  /// The file's offset of the first byte that is no character; nothing while all are some.
  std::optional<std::uint64_t> FaultOffset() const { return fault_; }
  /// The encoding that is read.
  const std::string& Encoding() const { return encoding_; }

 private:
  class Converter;

  std::size_t chooseBy(std::string_view begin);
  void open();

  std::string encoding_;
  std::unique_ptr<Converter> converter_;
  bool hasBegun_ = false;
  std::string rest_;          ///< bytes of a character that is not complete
  std::uint64_t restAt_ = 0;  ///< its offset in the file
  std::optional<std::uint64_t> fault_;
};

}  // namespace vex2::lab
