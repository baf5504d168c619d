#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vex2::lab {

/// Converts the bytes of a text file to UTF-8 as they arrive. A byte order mark shows the encoding,
/// and is left out. Without such a mark, zero bytes next to the first character show that it is
/// UTF-16. Otherwise the file has the encoding that the caller named.
class TextDecoder {
 public:
  /// The number of bytes that the first call of `Decode` must get, unless the file has fewer.
  static constexpr std::size_t kBeginSize = 4;

  /// `encoding` is a name that the system knows, in upper or lower case; if empty, UTF-8. Throws an
  /// error of class `kUsage` if the system does not know it.
  explicit TextDecoder(std::string encoding);
  ~TextDecoder();
  TextDecoder(const TextDecoder&) = delete;
  TextDecoder& operator=(const TextDecoder&) = delete;

  /// Converts further bytes, except an incomplete character at their end. If a byte is not part of
  /// a valid character, stops before it; further calls then return empty texts.
  std::string Decode(std::string_view bytes);
  /// Converts the rest at the end of the file, where an incomplete character is an error.
  std::string Finish();

  /// The offset in the file of the first byte that is not part of a valid character; nothing if all
  /// are valid.
  std::optional<std::uint64_t> FaultOffset() const { return fault_; }
  /// The encoding of the file.
  const std::string& Encoding() const { return encoding_; }

 private:
  class Converter;

  std::size_t chooseBy(std::string_view begin);
  void open();

  std::string encoding_;
  std::unique_ptr<Converter> converter_;
  bool hasBegun_ = false;
  std::string rest_;          ///< bytes of an incomplete character
  std::uint64_t restAt_ = 0;  ///< offset of `rest_` in the file
  std::optional<std::uint64_t> fault_;
};

}  // namespace vex2::lab
