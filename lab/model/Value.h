#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "vex2/framework/Export.h"

namespace vex2::lab {

/// A value of a document as a person reads it: none, a whole number, a number of 32 bits in
/// floating point, or a text in UTF-8.
using Value = std::variant<std::monostate, std::int64_t, float, std::string>;

/// Whether there is a value.
inline bool HasValue(const Value& value) {
  return !std::holds_alternative<std::monostate>(value);
}

/// The value as a person reads and types it; empty when there is none. A number in floating point
/// is the shortest text from which the same number is read.
VEX2_API std::string ValueText(const Value& value);

}  // namespace vex2::lab
