#pragma once

#include <nlohmann/json_fwd.hpp>
#include <ostream>

namespace vex2::lab {

/// The version of the JSON output. It increases when a key is removed or changes its meaning, but
/// not when a key is added.
inline constexpr int kJsonVersion = 1;

/// Prints `object` with the key "version" in front: on one line, or on several with `indent` blanks
/// per level. Bytes that are not UTF-8 are printed as replacement characters.
void PrintJson(std::ostream& out, const nlohmann::ordered_json& object, int indent = -1);

}  // namespace vex2::lab
