#include "lab/text/Columns.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>

namespace vex2::lab {

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
    // The more bytes follow, the fewer bits of the character are in the lead byte.
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

std::size_t Columns(std::string_view utf8) {
  return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), startsCharacter));
}

std::string CutTo(std::string_view utf8, std::size_t width, std::string_view ellipsis) {
  if (Columns(utf8) <= width) return std::string(utf8);
  const std::size_t mark = Columns(ellipsis);
  if (width < mark) return {};
  std::size_t end = 0;
  std::size_t columns = 0;
  for (; end < utf8.size(); ++end) {
    if (startsCharacter(utf8[end]) && columns++ == width - mark) break;
  }
  return std::string(utf8.substr(0, end)).append(ellipsis);
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

std::string Folded(std::string_view text, std::size_t indent, std::size_t width) {
  std::string result;
  std::size_t column = indent;
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(text.size(), word.size() + 1));
    if (column > indent && column + 1 + Columns(word) > width) {
      result.erase(result.find_last_not_of(' ') + 1);
      result += '\n' + std::string(indent, ' ');
      column = indent;
    } else if (column > indent) {
      result += ' ';
      ++column;
    }
    result += word;
    column += Columns(word);
  }
  return result;
}

}  // namespace vex2::lab
