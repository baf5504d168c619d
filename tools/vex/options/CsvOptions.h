#pragma once

#include <string>
#include <vector>

#include "lab/csv/CsvReader.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

class Options;

/// The options of every command that reads CSV. They describe the format of the files where it
/// cannot be recognised from the content.
class CsvOptions {
 public:
  /// Adds --columns, --encoding, --delimiter and --decimal. This object must exist until the
  /// command line was parsed.
  void AddOptions(Options& options);

  /// The format that the options give for a file with these columns. Throws a usage error if
  /// --columns names a column that is not among them.
  CsvFormat Format(const std::vector<std::string_view>& columns) const;
  /// The format that the options give for another file, for which `option` gave `names`:
  /// COLUMN=NAME, separated by commas. Throws a usage error if `names` contains a column that is
  /// not among `columns`.
  CsvFormat Format(const std::vector<std::string_view>& columns, const std::string& names,
                   const std::string& option) const;

  static constexpr const char* kColumnsShown = "COLUMN=NAME,...";

 private:
  std::string names_;
  std::string encoding_;
  std::string delimiter_;
  std::string decimal_;
};

}  // namespace vex2::tool
