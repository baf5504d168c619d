#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "lab/exchange/CsvRow.h"

namespace vex2::lab {

/// What a file calls its columns, by the names that are asked for.
using CsvNames = std::map<std::string, std::string, std::less<>>;

/// The names in a text like "well=Pos,task=Type", which `option` gave, for a file of these columns.
/// Throws an error of the call when it names another column, one twice, or two alike.
CsvNames ParseColumnNames(std::string_view names, const std::vector<std::string_view>& columns,
                          const std::string& option);

/// How a CSV file is written, where it does not say so itself.
struct CsvFormat {
  std::string encoding;  ///< of a file without a byte order mark; empty is UTF-8
  char delimiter = 0;    ///< 0: comma, semicolon or tab, whichever parts the names of the columns
  char decimalMark = 0;  ///< 0: the point where commas part fields, else as the numbers tell
  CsvNames names;        ///< of columns that are not called as they are asked for
  std::string namesOption = "names";  ///< what gives such names, for error messages
  /// Called once with the file's name and the columns that were not asked for, where there are any.
  std::function<void(const std::string& file, const std::vector<std::string>& columns)> onUnused;
};

/// What a reader of CSV may ask for besides the columns that it needs.
struct CsvWishes {
  /// Columns that the file may lack; they are counted after the needed ones.
  std::vector<std::string_view> optionalColumns = {};
  /// Asked again and again while a pipe has nothing to read; false ends the reading.
  std::function<bool()> keepsWaiting = {};
  CsvFormat format = {};
};

/// Reads the CSV file at `path`, or standard input for "-": fields parted by comma, semicolon or
/// tab, quoted as RFC 4180 has it, lines ended in any way, in UTF-8, UTF-16 or what `wishes` name.
/// The first row names the columns, in any case of letters; `columns` must be among them, each
/// once, in any order, and others are passed over, which `wishes` are told. Rows without any
/// content are passed over, too. Calls `take` for each further row; a pipe's row is handed on as
/// soon as its line has ended. Throws an error that names the file, and the row where there is one;
/// also what `take` throws. False when the reading was ended by `wishes`.
bool ReadCsv(const std::string& path, const std::vector<std::string_view>& columns,
             const std::function<void(const CsvRow&)>& take, const CsvWishes& wishes = {});

/// What an error message calls a CSV file.
std::string CsvName(const std::string& path);

}  // namespace vex2::lab
