#include "lab/picture/Base64.h"

#include <string_view>
#include <vector>

namespace vex2::lab {

std::string Base64(std::span<const std::uint8_t> bytes) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t group = 0;
    for (std::size_t k = i; k < i + 3; ++k)
      group = group << 8U | (k < bytes.size() ? bytes[k] : 0U);
    for (std::size_t k = 0; k < 4; ++k) {
      const bool isThere = k <= bytes.size() - i;
      text += isThere ? kDigits[group >> (18 - 6 * k) & 0x3FU] : '=';
    }
  }
  return text;
}

std::string Base64(std::span<const std::uint16_t> numbers) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(2 * numbers.size());
  for (const std::uint16_t number : numbers) {
    bytes.push_back(static_cast<std::uint8_t>(number & 0xFFU));
    bytes.push_back(static_cast<std::uint8_t>(number >> 8U));
  }
  return Base64(bytes);
}

}  // namespace vex2::lab
