#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace vex2::lab {

/// The result of following a path such as "settings.comment" or "wells[A1].sample".
struct ValueAt {
  const nlohmann::ordered_json* value = nullptr;  ///< null if nothing was found
  /// The part of the path that was found. `missing` is the next name, which was not found. For an
  /// empty path both are empty.
  std::string reached;
  std::string missing;
  /// The value at the end of `reached`.
  const nlohmann::ordered_json* last = nullptr;
};

/// Finds a value in `root`. A path consists of names separated by "."; "[N]" is the entry of a list
/// with that index, from 0, and "[NAME]" the one with that well, name or tag. Case, "-" and "_" are
/// ignored in names. The result points into `root`.
ValueAt FindValue(const nlohmann::ordered_json& root, std::string_view path);

/// All paths that are one step longer than `path`. `value` is the value at `path`.
std::vector<std::string> PathsFrom(const std::string& path, const nlohmann::ordered_json& value);

/// The reason why there is no value at `path`, as a text for users. It lists the paths that
/// continue `found.reached`, and suggests the most similar one. `others` are further paths from the
/// root.
std::string WhyNoValue(const ValueAt& found, const std::string& path,
                       const std::vector<std::string>& others);

}  // namespace vex2::lab
