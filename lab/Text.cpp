#include "lab/Text.h"

#include <algorithm>

namespace vex2::lab {

namespace {

unsigned char byteOf(char character) {
  return static_cast<unsigned char>(character);
}

}  // namespace

std::string ToUtf8(std::string_view latin1) {
  std::string text;
  text.reserve(latin1.size());
  for (const char character : latin1) {
    const unsigned byte = byteOf(character);
    if (byte < 0x80U) {
      text += character;
    } else {
      text += static_cast<char>(0xC0U | byte >> 6U);
      text += static_cast<char>(0x80U | (byte & 0x3FU));
    }
  }
  return text;
}

std::optional<std::string> ToLatin1(std::string_view utf8) {
  std::string text;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const unsigned byte = byteOf(utf8[i]);
    if (byte < 0x80U) {
      text += utf8[i];
      continue;
    }
    // In UTF-8, the characters of Latin-1 begin with a byte up to C3.
    if ((byte != 0xC2U && byte != 0xC3U) || i + 1 == utf8.size()) return std::nullopt;
    const unsigned next = byteOf(utf8[++i]);
    if ((next & 0xC0U) != 0x80U) return std::nullopt;
    text += static_cast<char>((byte & 0x03U) << 6U | (next & 0x3FU));
  }
  return text;
}

std::string Counted(unsigned long long count, std::string_view noun) {
  return std::to_string(count).append(" ").append(noun).append(count == 1 ? "" : "s");
}

std::string Counted(unsigned long long count, std::string_view one, std::string_view many) {
  return std::to_string(count).append(" ").append(count == 1 ? one : many);
}

bool IsPlain(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

bool IsSameIgnoringCase(std::string_view one, std::string_view other) {
  const auto lower = [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  };
  return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                    [&](char a, char b) { return lower(a) == lower(b); });
}

std::string ToHex(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  text.reserve(2 * bytes.size());
  for (const char character : bytes) {
    text += kDigits[byteOf(character) >> 4U];
    text += kDigits[byteOf(character) & 0xFU];
  }
  return text;
}

std::string ToHex(std::span<const std::uint8_t> bytes) {
  return ToHex({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

std::string Quoted(std::string_view text) {
  constexpr std::size_t kMost = 40;
  const std::string shown(text.substr(0, kMost));
  return text.size() > kMost ? "'" + shown + "...'" : "'" + shown + "'";
}

}  // namespace vex2::lab
