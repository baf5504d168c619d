#include <fmt/core.h>

#include <algorithm>

#include "lab/Error.h"
#include "lab/Text.h"
#include "lab/csv/CsvReader.h"

namespace vex2::lab {

namespace {

// No two columns may have the same name in the file, or one would be read in place of the other.
void requireDistinct(const std::vector<std::string_view>& columns, const CsvNames& names,
                     const std::string& option) {
  const auto refuse = [&](const std::string& name, std::string_view one, std::string_view other) {
    throw Error(ErrorCode::kUsage,
                fmt::format("{}: {} cannot be both {} and {}", option, Quoted(name), one, other));
  };
  for (auto given = names.begin(); given != names.end(); ++given) {
    for (auto other = names.begin(); other != given; ++other) {
      if (other->second == given->second) refuse(given->second, other->first, given->first);
    }
    for (const std::string_view column : columns) {
      if (names.contains(column) || !IsSameIgnoringCase(column, given->second)) continue;
      refuse(given->second, column, given->first);
    }
  }
}

}  // namespace

CsvNames ParseColumnNames(std::string_view names, const std::vector<std::string_view>& columns,
                          const std::string& option) {
  CsvNames result;
  while (!names.empty()) {
    const std::string_view pair = names.substr(0, names.find(','));
    names.remove_prefix(std::min(names.size(), pair.size() + 1));
    const std::size_t equals = pair.find('=');
    const std::string_view column = pair.substr(0, equals);
    const auto isIt = [&](std::string_view known) { return known == column; };
    if (std::none_of(columns.begin(), columns.end(), isIt)) {
      std::string known;
      for (const std::string_view each : columns)
        known.append(known.empty() ? "" : ", ").append(each);
      throw Error(ErrorCode::kUsage,
                  fmt::format("{}: {} is not a column of this file; its columns are {}", option,
                              Quoted(column), known));
    }
    if (equals == std::string_view::npos || equals + 1 == pair.size()) {
      throw Error(ErrorCode::kUsage,
                  fmt::format("{}: {} gives no name; write {}=NAME", option, Quoted(pair), column));
    }
    if (!result.emplace(column, pair.substr(equals + 1)).second) {
      throw Error(ErrorCode::kUsage, fmt::format("{}: {} is named twice", option, Quoted(column)));
    }
  }
  requireDistinct(columns, result, option);
  return result;
}

}  // namespace vex2::lab
