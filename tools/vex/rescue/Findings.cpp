#include "tools/vex/rescue/Findings.h"

#include <algorithm>
#include <string_view>

namespace vex2::tool {

std::string_view NameOf(Severity severity) {
  constexpr std::array<std::string_view, kSeverities> kNames = {"error", "warning", "note"};
  return kNames[static_cast<std::size_t>(severity)];
}

void Findings::Add(Finding finding) {
  ++counts_[static_cast<std::size_t>(finding.severity)];
  if (findings_.size() < kMost) {
    findings_.push_back(std::move(finding));
  } else {
    ++leftOut_;
  }
}

std::vector<Finding> Findings::Sorted() const {
  std::vector<Finding> sorted = findings_;
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const Finding& a, const Finding& b) { return a.offset < b.offset; });
  return sorted;
}

std::size_t Findings::Count(Severity severity) const {
  return counts_[static_cast<std::size_t>(severity)];
}

}  // namespace vex2::tool
