#include "lab/check/Findings.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace vex2::lab {

std::string_view NameOf(Severity severity) {
  constexpr std::array<std::string_view, kSeverities> kNames = {"error", "warning", "note"};
  return kNames[static_cast<std::size_t>(severity)];
}

// If the list is full, drops its last finding, so that notes never displace an error.
void Findings::Add(Finding finding) {
  ++counts[static_cast<std::size_t>(finding.severity)];
  const auto isBefore = [](const Finding& one, const Finding& other) {
    return std::tie(one.severity, one.offset) < std::tie(other.severity, other.offset);
  };
  const auto place = std::upper_bound(list.begin(), list.end(), finding, isBefore);
  if (place == list.end() && list.size() == kMost) return;
  list.insert(place, std::move(finding));
  if (list.size() > kMost) list.pop_back();
}

std::size_t Findings::Count(Severity severity) const {
  return counts[static_cast<std::size_t>(severity)];
}

std::size_t Findings::LeftOut() const {
  return std::accumulate(counts.begin(), counts.end(), std::size_t{0}) - list.size();
}

}  // namespace vex2::lab
