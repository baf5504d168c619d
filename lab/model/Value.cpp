#include "lab/model/Value.h"

#include <array>
#include <charconv>

namespace vex2::lab {

std::string ValueText(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return std::to_string(*whole);
  const auto* number = std::get_if<float>(&value);
  if (number == nullptr) return {};
  std::array<char, 64> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), *number).ptr;
  return {text.data(), end};
}

}  // namespace vex2::lab
