#include "lab/check/Findings.h"

#include <algorithm>
#include <numeric>
#include <string_view>

namespace vex2::lab {

std::string_view NameOf(Severity severity) {
  constexpr std::array<std::string_view, kSeverities> kNames = {"error", "warning", "note"};
  return kNames[static_cast<std::size_t>(severity)];
}

void Findings::Add(Finding finding) {
  const auto severity = static_cast<std::size_t>(finding.severity);
  ++counts_[severity];
  if (findings_[severity].size() < kMost) findings_[severity].push_back(std::move(finding));
}

std::vector<Finding> Findings::Sorted() const {
  std::vector<Finding> sorted;
  for (const std::vector<Finding>& findings : findings_) {
    const std::size_t room = std::min(kMost - sorted.size(), findings.size());
    const auto begin = sorted.insert(sorted.end(), findings.begin(),
                                     findings.begin() + static_cast<std::ptrdiff_t>(room));
    std::stable_sort(begin, sorted.end(),
                     [](const Finding& a, const Finding& b) { return a.offset < b.offset; });
  }
  return sorted;
}

std::size_t Findings::Count(Severity severity) const {
  return counts_[static_cast<std::size_t>(severity)];
}

std::size_t Findings::LeftOut() const {
  const std::size_t all = std::accumulate(counts_.begin(), counts_.end(), std::size_t{0});
  return all - std::min(all, kMost);
}

}  // namespace vex2::lab
