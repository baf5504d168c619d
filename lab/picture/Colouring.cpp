#include "lab/picture/Colouring.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <limits>

namespace vex2::lab {

namespace {

std::string titleOf(ColourBy colourBy) {
  switch (colourBy) {
    case ColourBy::kDetector:
      return "detector";
    case ColourBy::kSample:
      return "sample";
    case ColourBy::kTask:
      return "task";
    case ColourBy::kCq:
      break;
  }
  return "Cq";
}

// The key by which a name is sorted. Numbers in it sort by value, so that "A 5x" comes before "A
// 25x".
std::string sortKey(const std::string& name) {
  constexpr std::size_t kDigits = 12;
  std::string key;
  for (std::size_t i = 0; i < name.size();) {
    std::size_t end = i;
    while (end < name.size() && std::isdigit(static_cast<unsigned char>(name[end])) != 0) ++end;
    if (end == i) {
      key += name[i++];
      continue;
    }
    key.append(kDigits - std::min(kDigits, end - i), '0').append(name, i, end - i);
    i = end;
  }
  return key;
}

std::string cycleText(double cycle) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.1f", cycle);
  return text.data();
}

}  // namespace

Colouring::Colouring(ColourBy colourBy, const std::vector<ColourValue>& values)
    : isScale_(colourBy == ColourBy::kCq), title_(titleOf(colourBy)) {
  low_ = std::numeric_limits<double>::infinity();
  high_ = -low_;
  std::map<std::string, std::string> sorted;
  for (const ColourValue& value : values) {
    if (value.number) {
      low_ = std::min(low_, *value.number);
      high_ = std::max(high_, *value.number);
    }
    if (!value.group.empty())
      sorted.emplace(sortKey(value.group) + '\0' + value.group, value.group);
  }
  if (isScale_) return;
  for (const auto& [key, name] : sorted) {
    groups_[name] = names_.size();
    names_.push_back(name);
  }
}

Look Colouring::Of(const ColourValue& value) const {
  Look look;
  if (isScale_ && value.number) {
    look.share = high_ > low_ ? (*value.number - low_) / (high_ - low_) : 0.5;
  }
  const auto found = groups_.find(value.group);
  if (!isScale_ && found != groups_.end()) look.group = found->second;
  return look;
}

SceneLegend Colouring::Legend() const {
  SceneLegend legend{.title = title_, .groups = names_, .low = {}, .high = {}};
  if (isScale_ && low_ <= high_) {
    legend.low = cycleText(low_);
    legend.high = cycleText(high_);
  }
  return legend;
}

}  // namespace vex2::lab
