#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vex2::lab {

/// Converts a text of a document to UTF-8. Documents store each character in one byte (Latin-1);
/// the command line, terminals and JSON use UTF-8.
std::string ToUtf8(std::string_view latin1);
/// Converts UTF-8 to a text of a document. Returns nothing if `utf8` is not valid UTF-8, or has a
/// character that is not in Latin-1.
std::optional<std::string> ToLatin1(std::string_view utf8);

/// The count with its noun: "1 frame", "2 frames".
std::string Counted(unsigned long long count, std::string_view noun);
/// The count with its noun, for nouns whose plural is not formed by an "s".
std::string Counted(unsigned long long count, std::string_view one, std::string_view many);

/// The number that the whole of `text` represents; nothing if `text` is not a number, or if the
/// number does not fit into `Number`. `how` is a base or a format, as for std::from_chars.
template <typename Number, typename... How>
std::optional<Number> NumberIn(std::string_view text, How... how) {
  Number number{};
  const char* const last = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), last, number, how...);
  if (error != std::errc{} || end != last) return std::nullopt;
  return number;
}

/// Whether each character is printable ASCII, as in the tags and codes that programs write.
bool IsPlain(std::string_view text);

/// Whether the texts differ in nothing but the case of ASCII letters.
bool IsSameIgnoringCase(std::string_view one, std::string_view other);

/// The bytes in hexadecimal, two digits each.
std::string ToHex(std::string_view bytes);
std::string ToHex(std::span<const std::uint8_t> bytes);

/// `text` in quotes for an error message, shortened if it is long.
std::string Quoted(std::string_view text);

}  // namespace vex2::lab
