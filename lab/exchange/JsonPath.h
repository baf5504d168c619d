#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace vex2::lab {

/// Where a path such as "settings.comment" or "wells[A1].sample" leads to.
struct ValueAt {
  const nlohmann::ordered_json* value = nullptr;  ///< null when nothing is there
  /// How far the path leads, and what it does not find there; an empty path finds nothing.
  std::string reached;
  std::string missing;
  /// The value where `reached` ends.
  const nlohmann::ordered_json* last = nullptr;
};

/// Finds a value in `root`. A path is names with "." between them; "[N]" is the entry of a list
/// with that index, from 0, and "[NAME]" the one with that well, name or tag. Names are those of
/// the objects; capitals, "-" and "_" make no difference. The result points into `root`.
ValueAt FindValue(const nlohmann::ordered_json& root, std::string_view path);

/// The paths that go on from `path`, at which `value` is, one step.
std::vector<std::string> PathsFrom(const std::string& path, const nlohmann::ordered_json& value);

/// Why nothing is `found` at `path`, for people: the paths that lead on from where it ends, and
/// the one that was most likely meant. `others` are further paths from the root.
std::string WhyNoValue(const ValueAt& found, const std::string& path,
                       const std::vector<std::string>& others);

}  // namespace vex2::lab
