#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "vex2/framework/Export.h"

namespace vex2::lab {

/// A value of a document in the form that users see: no value, a whole number, a 32-bit
/// floating-point number, or a text in UTF-8.
using Value = std::variant<std::monostate, std::int64_t, float, std::string>;

/// Whether there is a value.
inline bool HasValue(const Value& value) {
  return !std::holds_alternative<std::monostate>(value);
}

/// The value as a text in the form that users see and type; empty if there is no value. A
/// floating-point number becomes the shortest text from which the same number is read.
VEX2_API std::string ValueText(const Value& value);

}  // namespace vex2::lab
