#pragma once

#include <charconv>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vex2::lab {

/// Documents hold texts of single bytes, each a character of Latin-1; the command line, terminals
/// and JSON speak UTF-8.
std::string ToUtf8(std::string_view latin1);
/// Returns nothing if `utf8` is not UTF-8, or has a character that a document's text cannot hold.
std::optional<std::string> ToLatin1(std::string_view utf8);

/// "1 frame", "2 frames".
std::string Counted(unsigned long long count, std::string_view noun);
/// For nouns whose plural is no mere "s".
std::string Counted(unsigned long long count, std::string_view one, std::string_view many);

/// The number that the whole of `text` stands for, nothing if it stands for none that fits. `how`
/// is a base, or a form, as std::from_chars takes it.
template <typename Number, typename... How>
std::optional<Number> NumberIn(std::string_view text, How... how) {
  Number number{};
  const char* const last = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), last, number, how...);
  if (error != std::errc{} || end != last) return std::nullopt;
  return number;
}

/// Whether each character is one of printable ASCII, as in tags and codes that programs write.
bool IsPlain(std::string_view text);

/// The bytes in hexadecimal, two digits each.
std::string ToHex(std::string_view bytes);

}  // namespace vex2::lab
