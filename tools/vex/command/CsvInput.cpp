#include "tools/vex/command/CsvInput.h"

#include <algorithm>

#include "tools/vex/Errors.h"
#include "tools/vex/Options.h"

namespace vex2::tool {

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
  return format;
}

}  // namespace vex2::tool
