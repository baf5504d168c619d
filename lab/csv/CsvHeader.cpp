#include "lab/csv/CsvHeader.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <tuple>

#include "lab/Text.h"

namespace vex2::lab {

namespace {

constexpr std::array<char, 3> kDelimiters = {',', ';', '\t'};

CsvSplitter::Row namesIn(std::string_view line, char delimiter) {
  CsvSplitter splitter(delimiter);
  if (!splitter.Feed(line) || !splitter.Finish()) return {};
  auto rows = splitter.Take();
  return rows.empty() ? CsvSplitter::Row() : std::move(rows.front());
}

}  // namespace

// The indexes of the columns with the name `column`, or with the name that the caller gave for it.
// Case is ignored, unless the caller gave a name and a column has exactly that name.
std::vector<std::size_t> CsvHeader::placesOf(std::string_view column,
                                             const CsvSplitter::Row& names) const {
  const auto given = given_.find(column);
  const bool isGiven = given != given_.end();
  const std::string_view name = isGiven ? std::string_view(given->second) : column;
  std::vector<std::size_t> exact;
  std::vector<std::size_t> alike;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (names[i] == name) exact.push_back(i);
    if (IsSameIgnoringCase(names[i], name)) alike.push_back(i);
  }
  return isGiven && !exact.empty() ? exact : alike;
}

std::string CsvHeader::whyMissing(std::string_view column, const CsvSplitter::Row& names) const {
  constexpr std::size_t kMostShown = 12;
  const auto given = given_.find(column);
  const bool isGiven = given != given_.end();
  std::string had;
  for (std::size_t i = 0; i < std::min(names.size(), kMostShown); ++i) {
    had += (i == 0 ? "" : ", ") + Quoted(names[i]);
  }
  if (names.size() > kMostShown) had += ", ...";
  const std::string other = format_.namesOption.empty()
                                ? std::string()
                                : fmt::format("; use '{} {}=NAME' if the file calls it otherwise",
                                              format_.namesOption, column);
  return fmt::format("has no column {} (it has {}); the first row must name the columns{}",
                     Quoted(isGiven ? given->second : column), had, other);
}

std::optional<std::string> CsvHeader::Find(const CsvSplitter::Row& names) {
  width_ = names.size();
  places_.clear();
  for (const std::string_view column : columns_) {
    const auto found = placesOf(column, names);
    if (found.size() > 1) {
      return fmt::format(
          "has the column {} twice, as fields {} and {}; rename or remove one of them",
          Quoted(names[found[0]]), found[0] + 1, found[1] + 1);
    }
    if (found.empty() && places_.size() < needed_) return whyMissing(column, names);
    const auto place = found.empty() ? std::nullopt : std::optional(found.front());
    const auto other = std::find(places_.begin(), places_.end(), place);
    if (place && other != places_.end()) {
      return fmt::format(
          "has one column {} for both {} and {}; {} must name two", Quoted(names[*place]),
          columns_[static_cast<std::size_t>(other - places_.begin())], column, format_.namesOption);
    }
    places_.push_back(place);
  }
  return std::nullopt;
}

std::vector<std::string> CsvHeader::Unused(const CsvSplitter::Row& names) const {
  std::vector<std::string> unused;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const bool isUsed = std::find(places_.begin(), places_.end(), i) != places_.end();
    if (!isUsed && !names[i].empty()) unused.push_back(names[i]);
  }
  return unused;
}

std::vector<std::string_view> CsvHeader::FieldsOf(const CsvSplitter::Row& row) const {
  std::vector<std::string_view> fields;
  fields.reserve(places_.size());
  for (const auto& place : places_) {
    fields.emplace_back(place ? std::string_view(row[*place]) : std::string_view());
  }
  return fields;
}

std::optional<char> CsvHeader::DelimiterOf(std::string_view line) const {
  struct Candidate {
    std::size_t found = 0;
    std::size_t fields = 0;
    char delimiter = ',';
  };
  std::vector<Candidate> candidates;
  for (const char delimiter : kDelimiters) {
    const CsvSplitter::Row names = namesIn(line, delimiter);
    if (names.size() < 2) continue;
    const auto isThere = [&](std::string_view column) { return !placesOf(column, names).empty(); };
    const auto found = std::count_if(columns_.begin(), columns_.end(), isThere);
    candidates.push_back({static_cast<std::size_t>(found), names.size(), delimiter});
  }
  if (candidates.empty()) return ',';
  const auto isLess = [](const Candidate& a, const Candidate& b) {
    return std::tie(a.found, a.fields) < std::tie(b.found, b.fields);
  };
  const auto best = std::max_element(candidates.begin(), candidates.end(), isLess);
  const auto isRival = [&](const Candidate& other) {
    return other.delimiter != best->delimiter && other.found == best->found && best->found > 0;
  };
  if (std::any_of(candidates.begin(), candidates.end(), isRival)) return std::nullopt;
  return best->delimiter;
}

}  // namespace vex2::lab
