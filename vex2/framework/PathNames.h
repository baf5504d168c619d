#pragma once

#include <string_view>

/// The parts of a path. A backslash always separates them, because documents are exchanged between
/// systems; so does "/", the separator of this system. Internal.
namespace vex2 {

inline std::string_view FileNameOf(std::string_view path) {
  const auto separator = path.find_last_of("/\\");
  return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

/// The name without its extension. A name whose only dot is its first character has no extension.
inline std::string_view FileTitleOf(std::string_view path) {
  const auto name = FileNameOf(path);
  const auto dot = name.rfind('.');
  return dot == std::string_view::npos || dot == 0 ? name : name.substr(0, dot);
}

}  // namespace vex2
