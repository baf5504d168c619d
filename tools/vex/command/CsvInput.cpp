#include "tools/vex/command/CsvInput.h"

#include <algorithm>
#include <cctype>

#include "tools/vex/Errors.h"
#include "tools/vex/Options.h"

namespace vex2::tool {

namespace {

// Most tables have columns that nobody asked for. That they are not in the document is told, so
// that no one looks for a second channel there.
void tellUnused(const std::string& file, const std::vector<std::string>& columns) {
  constexpr std::size_t kMostNamed = 12;
  std::string names;
  for (std::size_t i = 0; i < std::min(columns.size(), kMostNamed); ++i) {
    names += (i == 0 ? "" : ", ") + Escaped(columns[i]);
  }
  if (columns.size() > kMostNamed) {
    names += " and " + std::to_string(columns.size() - kMostNamed) + " more";
  }
  PrintLine(Printable(file) + ": columns not used: " + names);
}

bool isSameName(std::string_view one, std::string_view other) {
  return std::equal(one.begin(), one.end(), other.begin(), other.end(), [](char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) ==
           std::tolower(static_cast<unsigned char>(b));
  });
}

// What the file is said to call one column cannot be another, too: the other would be read from it.
void requireDistinct(const std::vector<std::string_view>& columns, const CsvNames& names,
                     const std::string& option) {
  const auto refuse = [&](const std::string& name, std::string_view one, std::string_view other) {
    throw Error(ErrorCode::kUsage, option + ": " + Quoted(name) + " cannot be both " +
                                       std::string(one) + " and " + std::string(other));
  };
  for (auto given = names.begin(); given != names.end(); ++given) {
    for (auto other = names.begin(); other != given; ++other) {
      if (other->second == given->second) refuse(given->second, other->first, given->first);
    }
    for (const std::string_view column : columns) {
      if (names.contains(column) || !isSameName(column, given->second)) continue;
      refuse(given->second, column, given->first);
    }
  }
}

}  // namespace

void CsvInput::AddOptions(Options& options) {
  options.Add("--columns", names_, "What the file calls its columns: well=Pos,task=Type")
      .Show(kColumnsShown);
  options.Add("--encoding", encoding_, "Encoding of CSV without a byte order mark; else UTF-8")
      .Show("NAME");
  options.Add("--delimiter", delimiter_, "What parts CSV fields; else what parts the names")
      .AllowOnly({"comma", "semicolon", "tab"})
      .Show("comma|semicolon|tab");
  options.Add("--decimal", decimal_, "Decimal mark in CSV; else as the numbers tell")
      .AllowOnly({"point", "comma"})
      .Show("point|comma");
}

CsvFormat CsvInput::Format(const std::vector<std::string_view>& columns) const {
  return Format(columns, names_, "--columns");
}

CsvFormat CsvInput::Format(const std::vector<std::string_view>& columns, const std::string& names,
                           const std::string& option) const {
  CsvFormat format;
  format.onUnused = tellUnused;
  format.namesOption = option;
  format.encoding = encoding_;
  if (!delimiter_.empty()) {
    format.delimiter = delimiter_ == "comma" ? ',' : delimiter_ == "semicolon" ? ';' : '\t';
  }
  if (!decimal_.empty()) format.decimalMark = decimal_ == "comma" ? ',' : '.';
  std::string_view rest = names;
  while (!rest.empty()) {
    const std::string_view pair = rest.substr(0, rest.find(','));
    rest.remove_prefix(std::min(rest.size(), pair.size() + 1));
    const std::size_t equals = pair.find('=');
    const std::string_view column = pair.substr(0, equals);
    const auto isIt = [&](std::string_view known) { return known == column; };
    if (std::none_of(columns.begin(), columns.end(), isIt)) {
      std::string known;
      for (const std::string_view each : columns)
        known.append(known.empty() ? "" : ", ").append(each);
      throw Error(ErrorCode::kUsage, option + ": " + Quoted(column) +
                                         " is no column of this file; its columns are " + known);
    }
    if (equals == std::string_view::npos || equals + 1 == pair.size()) {
      throw Error(ErrorCode::kUsage, option + ": " + Quoted(pair) + " gives no name; write " +
                                         std::string(column) + "=NAME");
    }
    if (!format.names.emplace(column, pair.substr(equals + 1)).second) {
      throw Error(ErrorCode::kUsage, option + ": " + Quoted(column) + " is named twice");
    }
  }
  requireDistinct(columns, format.names, option);
  return format;
}

}  // namespace vex2::tool
