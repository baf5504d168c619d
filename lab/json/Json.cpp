#include "lab/json/Json.h"

#include "lab/Text.h"
#include "lab/json/JsonOutput.h"

template class nlohmann::basic_json<>;
template class nlohmann::basic_json<nlohmann::ordered_map>;

namespace vex2::lab {

nlohmann::ordered_json ToJson(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return *whole;
  if (!HasValue(value)) return nullptr;
  return NumberIn<double>(ValueText(value)).value_or(0);
}

nlohmann::ordered_json NumberJson(std::string_view text) {
  if (const auto whole = NumberIn<std::int64_t>(text)) return *whole;
  return OrNull(NumberIn<double>(text));
}

std::string JsonText(const nlohmann::ordered_json& value) {
  if (value.is_null()) return {};
  if (value.is_string()) return value.get<std::string>();
  if (!value.is_number_float()) return value.dump();
  return ValueText(value.get<float>());
}

void PrintJson(std::ostream& out, const nlohmann::ordered_json& object, int indent) {
  nlohmann::ordered_json versioned = {{"version", kJsonVersion}};
  versioned.update(object);
  out << versioned.dump(indent, ' ', false, nlohmann::ordered_json::error_handler_t::replace)
      << '\n';
}

}  // namespace vex2::lab
