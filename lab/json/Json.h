#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "lab/model/Value.h"

// Instantiated only in Json.cpp. Otherwise every source that uses JSON would compile it, which
// would take most of the time to build the command.
extern template class nlohmann::basic_json<>;
extern template class nlohmann::basic_json<nlohmann::ordered_map>;

namespace vex2::lab {

/// The value as JSON; null if there is no value. A floating-point number becomes the shortest
/// decimal number for its 32 bits, not the longer one for 64 bits.
nlohmann::ordered_json ToJson(const Value& value);

/// The value, or null if there is none.
template <typename Content>
nlohmann::ordered_json OrNull(const std::optional<Content>& content) {
  return content ? nlohmann::ordered_json(*content) : nlohmann::ordered_json(nullptr);
}

/// The number that a decimal text represents; null for a text that is not a number, such as "NA".
nlohmann::ordered_json NumberJson(std::string_view text);

/// The text of a JSON value: a string itself, an empty text for null, a number in its shortest
/// form.
std::string JsonText(const nlohmann::ordered_json& value);

}  // namespace vex2::lab
