#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "lab/csv/CsvRow.h"

namespace vex2::lab {

/// The names of columns in a file. The keys are the usual names.
using CsvNames = std::map<std::string, std::string, std::less<>>;

/// Parses a text like "well=Pos,task=Type", the value of `option`, for a file with these columns.
/// Throws an error of class `kUsage` if a column is unknown or is given twice, or if two columns
/// get the same name.
CsvNames ParseColumnNames(std::string_view names, const std::vector<std::string_view>& columns,
                          const std::string& option);

/// The format of a CSV file, as far as it cannot be found from the file itself.
struct CsvFormat {
  std::string encoding;  ///< encoding of a file without a byte order mark; if empty, UTF-8
  /// If it is 0, a comma, semicolon or tab, whichever separates the names of the columns.
  char delimiter = 0;
  /// The decimal mark, '.' or ','. With 0, it is a point if commas separate the fields, and is
  /// found from the numbers if they do not.
  char decimalMark = 0;
  CsvNames names;                     ///< names of columns that differ from the usual ones
  std::string namesOption = "names";  ///< the option that sets `names`, for error messages
  /// Called once with the name of the file and its columns that are not used, if there are any.
  std::function<void(const std::string& file, const std::vector<std::string>& columns)> onUnused;
};

/// Further options for reading CSV.
struct CsvWishes {
  /// Columns that the file may lack. They are counted after the needed ones.
  std::vector<std::string_view> optionalColumns = {};
  /// Called repeatedly while a pipe has nothing to read. If it returns false, reading ends.
  std::function<bool()> keepsWaiting = {};
  CsvFormat format = {};
};

/// Reads the CSV file at `path`, or standard input for "-", and calls `take` for each row after the
/// column names.
///
/// Fields are separated by comma, semicolon or tab, and quoted as in RFC 4180. Lines may end in any
/// way. The encoding is UTF-8, UTF-16 or that in `wishes`. The first row has the names of the
/// columns, in upper or lower case. Each of `columns` must be among them once, in any order. Other
/// columns and empty rows are skipped; `wishes.format.onUnused` is called with the names of skipped
/// columns. A row from a pipe is passed on as soon as its line ends.
///
/// Returns false if `wishes.keepsWaiting` ended the reading. Throws an error that names the file;
/// if one row is at fault, it also names the row. Passes on the exceptions of `take`.
bool ReadCsv(const std::string& path, const std::vector<std::string_view>& columns,
             const std::function<void(const CsvRow&)>& take, const CsvWishes& wishes = {});

/// The name of a CSV file in error messages: `path`, or "standard input" for "-".
std::string CsvName(const std::string& path);

}  // namespace vex2::lab
