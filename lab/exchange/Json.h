#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "lab/model/Value.h"

// Compiled once, in Json.cpp; each source that speaks JSON would do it again otherwise, and that
// was the greater part of building the command.
extern template class nlohmann::basic_json<>;
extern template class nlohmann::basic_json<nlohmann::ordered_map>;

namespace vex2::lab {

/// The value as JSON, null for none. A number in floating point is the shortest decimal number that
/// stands for it, not the longer one of 64 bits.
nlohmann::ordered_json ToJson(const Value& value);

/// The value, or null where there is none.
template <typename Content>
nlohmann::ordered_json OrNull(const std::optional<Content>& content) {
  return content ? nlohmann::ordered_json(*content) : nlohmann::ordered_json(nullptr);
}

/// The number that a decimal text stands for; null for a text that stands for none, as "NA".
nlohmann::ordered_json NumberJson(std::string_view text);

/// The text of a JSON value: a text itself, nothing for null, a number in its shortest form.
std::string JsonText(const nlohmann::ordered_json& value);

}  // namespace vex2::lab
