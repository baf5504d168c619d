#include "tools/vex/text/Text.h"

#include <array>
#include <cstdint>
#include <cstdio>

#include "tools/vex/Errors.h"
#include "tools/vex/text/Terminal.h"

namespace vex2::tool {

namespace {

unsigned char byteOf(char character) {
  return static_cast<unsigned char>(character);
}

bool startsCharacter(char character) {
  return (byteOf(character) & 0xC0U) != 0x80U;
}

}  // namespace

std::string ToAscii(std::string_view utf8) {
  std::string text;
  while (!utf8.empty()) {
    std::size_t length = 1;
    while (length < utf8.size() && !startsCharacter(utf8[length])) ++length;
    const unsigned lead = byteOf(utf8.front());
    if (lead < 0x80U) {
      text += utf8.front();
      utf8.remove_prefix(1);
      continue;
    }
    // The lead byte holds the fewer bits the more bytes there are.
    std::uint32_t character = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i)
      character = character << 6U | (byteOf(utf8[i]) & 0x3FU);
    std::array<char, 16> shown{};
    std::snprintf(shown.data(), shown.size(), character > 0xFFFFU ? "\\U%08x" : "\\u%04x",
                  character);
    text += shown.data();
    utf8.remove_prefix(length);
  }
  return text;
}

std::string_view Ellipsis() {
  return Terminal::IsAscii() ? "..." : "…";
}

std::size_t Columns(std::string_view utf8) {
  std::size_t columns = 0;
  for (const char character : utf8) columns += startsCharacter(character) ? 1U : 0U;
  return columns;
}

std::string CutTo(std::string_view utf8, std::size_t width) {
  if (Columns(utf8) <= width) return std::string(utf8);
  const std::size_t mark = Columns(Ellipsis());
  if (width < mark) return {};
  std::size_t end = 0;
  std::size_t columns = 0;
  for (; end < utf8.size(); ++end) {
    if (startsCharacter(utf8[end]) && columns++ == width - mark) break;
  }
  return std::string(utf8.substr(0, end)).append(Ellipsis());
}

std::string Shown(std::string_view latin1, std::size_t width) {
  // A hostile text may be very long: what cannot be seen is not worked on.
  const std::string text = Printable(ToUtf8(latin1.substr(0, width)));
  constexpr std::size_t kQuotes = 2;
  if (latin1.size() <= width && Columns(text) + kQuotes <= width) return '"' + text + '"';
  return '"' + CutTo(text + std::string(Ellipsis()), width > kQuotes ? width - kQuotes : 1) + '"';
}

std::string PadRight(std::string text, std::size_t width) {
  const std::size_t columns = Columns(text);
  if (columns < width) text.append(width - columns, ' ');
  return text;
}

std::string PadLeft(std::string text, std::size_t width) {
  const std::size_t columns = Columns(text);
  if (columns < width) text.insert(0, width - columns, ' ');
  return text;
}

}  // namespace vex2::tool
