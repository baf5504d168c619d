#include "lab/json/JsonPath.h"

#include <fmt/core.h>

#include <algorithm>
#include <cctype>
#include <optional>

#include "lab/Nearest.h"
#include "lab/Text.h"
#include "lab/json/Json.h"
#include "lab/model/PlateLayout.h"

namespace vex2::lab {

namespace {

using nlohmann::ordered_json;

// The keys that name the entries of a list, in the order of preference.
constexpr const char* kEntryNames[] = {"well", "name", "tag"};

std::string normalized(std::string_view name) {
  std::string result;
  for (const char character : name) {
    if (character == '-' || character == '_') continue;
    result += static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
  }
  return result;
}

std::optional<std::string> entryName(const ordered_json& entry) {
  if (!entry.is_object()) return std::nullopt;
  for (const char* key : kEntryNames) {
    const auto found = entry.find(key);
    if (found != entry.end() && found->is_string()) return found->get<std::string>();
  }
  return std::nullopt;
}

/// One step of a path: a name, or the text in brackets.
struct Step {
  std::string text;
  bool isEntry = false;

  std::string Shown(bool isFirst) const {
    if (isEntry) return "[" + text + "]";
    return (isFirst ? "" : ".") + text;
  }
};

std::vector<Step> stepsOf(std::string_view path) {
  std::vector<Step> steps;
  while (!path.empty()) {
    if (path.front() == '[') {
      const std::size_t end = std::min(path.find(']'), path.size());
      steps.push_back({std::string(path.substr(1, end - 1)), true});
      path.remove_prefix(std::min(path.size(), end + 1));
      continue;
    }
    if (path.front() == '.') path.remove_prefix(1);
    const std::size_t end = std::min(path.find_first_of(".["), path.size());
    steps.push_back({std::string(path.substr(0, end)), false});
    path.remove_prefix(end);
  }
  return steps;
}

const ordered_json* memberOf(const ordered_json& value, const std::string& name) {
  if (!value.is_object()) return nullptr;
  if (const auto found = value.find(name); found != value.end()) return &*found;
  for (const auto& [key, member] : value.items()) {
    if (normalized(key) == normalized(name)) return &member;
  }
  return nullptr;
}

const ordered_json* entryOf(const ordered_json& value, const std::string& name) {
  if (!value.is_array()) return memberOf(value, name);
  for (const auto& entry : value) {
    if (entryName(entry) == name) return &entry;
  }
  if (const auto index = NumberIn<std::size_t>(name)) {
    return *index < value.size() ? &value[*index] : nullptr;
  }
  // Names come from the document and may be alike. If several entries match only when case and
  // signs are ignored, take none of them.
  const ordered_json* alike = nullptr;
  for (const auto& entry : value) {
    const auto own = entryName(entry);
    if (!own) continue;
    const bool isWell = entry.contains("well") && PlainWellName(name) == *own;
    if (!isWell && normalized(*own) != normalized(name)) continue;
    if (alike != nullptr) return nullptr;
    alike = &entry;
  }
  return alike;
}

}  // namespace

ValueAt FindValue(const ordered_json& root, std::string_view path) {
  ValueAt result;
  result.last = &root;
  if (path.empty()) return result;
  for (const Step& step : stepsOf(path)) {
    const ordered_json* next =
        step.isEntry ? entryOf(*result.last, step.text) : memberOf(*result.last, step.text);
    if (next == nullptr) {
      result.missing = step.text;
      return result;
    }
    result.reached += step.Shown(result.reached.empty());
    result.last = next;
  }
  result.value = result.last;
  return result;
}

std::vector<std::string> PathsFrom(const std::string& path, const ordered_json& value) {
  std::vector<std::string> paths;
  if (value.is_object()) {
    for (const auto& item : value.items()) {
      paths.push_back((path.empty() ? "" : path + ".") + item.key());
    }
  } else if (value.is_array()) {
    for (std::size_t i = 0; i < value.size(); ++i) {
      paths.push_back(path + "[" + entryName(value[i]).value_or(std::to_string(i)) + "]");
    }
  }
  return paths;
}

std::string WhyNoValue(const ValueAt& found, const std::string& path,
                       const std::vector<std::string>& others) {
  constexpr std::size_t kMostNamed = 12;
  std::vector<std::string> paths = PathsFrom(found.reached, *found.last);
  if (found.reached.empty()) paths.insert(paths.end(), others.begin(), others.end());
  // Compare only the last names, since all paths have the same beginning.
  std::vector<std::string> names;
  const std::string prefix = found.reached.empty() ? "" : found.reached + ".";
  if (!found.last->is_array()) {
    for (const std::string& each : paths) names.push_back(each.substr(prefix.size()));
  }
  const auto near = NearestName(found.missing, names);
  if (paths.empty()) {
    return fmt::format("it has no value '{}'; '{}' holds no others", path, found.reached);
  }
  std::string known;
  for (std::size_t i = 0; i < paths.size() && i < kMostNamed; ++i) {
    known += (i > 0 ? ", " : "") + paths[i];
  }
  if (paths.size() > kMostNamed) known += fmt::format(" and {} more", paths.size() - kMostNamed);
  return near ? fmt::format("it has no value '{}'; did you mean '{}{}'? There are {}", path, prefix,
                            *near, known)
              : fmt::format("it has no value '{}'; there are {}", path, known);
}

}  // namespace vex2::lab
