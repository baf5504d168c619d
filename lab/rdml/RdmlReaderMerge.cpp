#include <algorithm>

#include "lab/rdml/RdmlReaderRuns.h"

namespace vex2::lab::rdml {

namespace {

using Reacts = std::map<std::uint32_t, const ReadReact*>;

bool agree(const std::string& one, const std::string& other) {
  return one.empty() || other.empty() || one == other;
}

bool bothHave(const Points& one, const Points& other) {
  return !one.readings.empty() && !other.readings.empty();
}

std::string dyeOf(const Content& content, const std::string& target) {
  const auto found = content.targets.find(target);
  return found != content.targets.end() ? found->second.dye : std::string();
}

Reacts reactsOf(const ReadRun& run) {
  Reacts reacts;
  for (const ReadReact& react : run.reacts) reacts.emplace(react.number, &react);
  return reacts;
}

// Whether the data of two wells can be joined in one well.
bool fit(const Content& content, const ReadReact& one, const ReadReact& other) {
  for (const ReadData& left : one.data) {
    for (const ReadData& right : other.data) {
      if (left.target != right.target) {
        if (dyeOf(content, left.target) == dyeOf(content, right.target)) return false;
        continue;
      }
      if (bothHave(left.amplification, right.amplification)) return false;
      if (bothHave(left.melting, right.melting)) return false;
    }
  }
  return agree(one.sample, other.sample);
}

bool areParts(const Content& content, const ReadRun& one, const ReadRun& other) {
  if (one.experiment != other.experiment || one.rows != other.rows ||
      one.columns != other.columns || !agree(one.date, other.date) ||
      !agree(one.conditions, other.conditions)) {
    return false;
  }
  const Reacts left = reactsOf(one);
  const Reacts right = reactsOf(other);
  std::size_t shared = 0;
  for (const auto& [number, react] : left) {
    const auto found = right.find(number);
    if (found == right.end()) continue;
    ++shared;
    if (!fit(content, *react, *found->second)) return false;
  }
  return shared > 0 && shared == std::min(left.size(), right.size());
}

void moveInto(ReadReact& to, ReadReact& from) {
  for (ReadData& data : from.data) {
    const auto same = std::find_if(to.data.begin(), to.data.end(), [&](const ReadData& known) {
      return known.target == data.target;
    });
    if (same == to.data.end()) {
      to.data.push_back(std::move(data));
      continue;
    }
    if (!data.amplification.readings.empty()) same->amplification = std::move(data.amplification);
    if (!data.melting.readings.empty()) same->melting = std::move(data.melting);
  }
}

void mergeInto(ReadRun& to, ReadRun& from) {
  if (to.date.empty()) to.date = from.date;
  if (to.conditions.empty()) to.conditions = from.conditions;
  if (to.description.empty()) to.description = from.description;
  for (ReadReact& react : from.reacts) {
    const auto same = std::find_if(to.reacts.begin(), to.reacts.end(), [&](const ReadReact& known) {
      return known.number == react.number;
    });
    if (same == to.reacts.end()) {
      to.reacts.push_back(std::move(react));
    } else {
      moveInto(*same, react);
    }
  }
}

}  // namespace

void MergeParts(Content& content,
                const std::function<void(const std::string&, const std::string&)>& onMerged) {
  std::vector<ReadRun>& runs = content.runs;
  for (std::size_t first = 0; first < runs.size(); ++first) {
    for (std::size_t next = first + 1; next < runs.size();) {
      if (!areParts(content, runs[first], runs[next])) {
        ++next;
        continue;
      }
      onMerged(runs[first].id, runs[next].id);
      mergeInto(runs[first], runs[next]);
      runs.erase(runs.begin() + static_cast<std::ptrdiff_t>(next));
    }
  }
}

}  // namespace vex2::lab::rdml
