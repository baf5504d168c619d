#pragma once

#include <nlohmann/json_fwd.hpp>
#include <ostream>

namespace vex2::lab {

/// The version of the JSON that documents are shown in. It grows when a key goes or changes its
/// meaning; keys are added without that.
inline constexpr int kJsonVersion = 1;

/// Prints `object` with the key "version" in front: on one line, or on several with `indent` blanks
/// a level. Texts that are no UTF-8 come out with the replacement character.
void PrintJson(std::ostream& out, const nlohmann::ordered_json& object, int indent = -1);

}  // namespace vex2::lab
