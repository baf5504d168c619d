#include "tools/vex/text/Json.h"

#include "lab/Text.h"

template class nlohmann::basic_json<>;
template class nlohmann::basic_json<nlohmann::ordered_map>;

namespace vex2::tool {

nlohmann::ordered_json ToJson(const lab::Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return *whole;
  if (!lab::HasValue(value)) return nullptr;
  return lab::NumberIn<double>(lab::ValueText(value)).value_or(0);
}

nlohmann::ordered_json NumberJson(std::string_view text) {
  if (const auto whole = lab::NumberIn<std::int64_t>(text)) return *whole;
  return OrNull(lab::NumberIn<double>(text));
}

std::string JsonText(const nlohmann::ordered_json& value) {
  if (value.is_null()) return {};
  if (value.is_string()) return value.get<std::string>();
  if (!value.is_number_float()) return value.dump();
  return lab::ValueText(value.get<float>());
}

}  // namespace vex2::tool
