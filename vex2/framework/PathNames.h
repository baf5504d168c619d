#pragma once

#include <string_view>

/// The parts of a path. The separators are "/", as on this system, and the backslash, because
/// documents are exchanged between systems. Internal.
namespace vex2 {

inline std::string_view FileNameOf(std::string_view path) {
  const auto separator = path.find_last_of("/\\");
  return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

/// The file name without its extension. A name whose only dot is its first character has no
/// extension.
inline std::string_view FileTitleOf(std::string_view path) {
  const auto name = FileNameOf(path);
  const auto dot = name.rfind('.');
  return dot == std::string_view::npos || dot == 0 ? name : name.substr(0, dot);
}

}  // namespace vex2
