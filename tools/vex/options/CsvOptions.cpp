#include "tools/vex/options/CsvOptions.h"

#include <fmt/core.h>

#include <algorithm>

#include "tools/vex/Errors.h"
#include "tools/vex/options/Options.h"

namespace vex2::tool {

namespace {

// Many tables have columns that are not used. Report them, so that nobody expects, for example, a
// second channel in the document.
void tellUnused(const std::string& file, const std::vector<std::string>& columns) {
  constexpr std::size_t kMostNamed = 12;
  std::string names;
  for (std::size_t i = 0; i < std::min(columns.size(), kMostNamed); ++i) {
    names += (i == 0 ? "" : ", ") + Escaped(columns[i]);
  }
  if (columns.size() > kMostNamed) {
    names += fmt::format(" and {} more", columns.size() - kMostNamed);
  }
  PrintLine(fmt::format("{}: columns not used: {}", Printable(file), names));
}

}  // namespace

void CsvOptions::AddOptions(Options& options) {
  options.Add("--columns", names_, "Names of columns in the file: well=Pos,task=Type")
      .Show(kColumnsShown);
  options.Add("--encoding", encoding_, "Encoding of CSV without byte order mark; default UTF-8")
      .Show("NAME");
  options.Add("--delimiter", delimiter_, "Delimiter in CSV; default: that of the first row")
      .AllowOnly({"comma", "semicolon", "tab"})
      .Show("comma|semicolon|tab");
  options.Add("--decimal", decimal_, "Decimal mark in CSV; default: found from the numbers")
      .AllowOnly({"point", "comma"})
      .Show("point|comma");
}

CsvFormat CsvOptions::Format(const std::vector<std::string_view>& columns) const {
  return Format(columns, names_, "--columns");
}

CsvFormat CsvOptions::Format(const std::vector<std::string_view>& columns, const std::string& names,
                             const std::string& option) const {
  CsvFormat format;
  format.onUnused = tellUnused;
  format.namesOption = option;
  format.encoding = encoding_;
  if (!delimiter_.empty()) {
    format.delimiter = delimiter_ == "comma" ? ',' : delimiter_ == "semicolon" ? ';' : '\t';
  }
  if (!decimal_.empty()) format.decimalMark = decimal_ == "comma" ? ',' : '.';
  format.names = ParseColumnNames(names, columns, option);
  return format;
}

}  // namespace vex2::tool
