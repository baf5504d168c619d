#pragma once

#include <string>
#include <vector>

#include "lab/exchange/CsvReader.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

class Options;

/// The options of every command that reads CSV: how its files are written where they do not say so
/// themselves.
class CsvInput {
 public:
  /// Adds --columns, --encoding, --delimiter and --decimal. They must live until the command line
  /// was read.
  void AddOptions(Options& options);

  /// What was given, for a file of these columns. Throws an error of the call when --columns has
  /// one that the file has not.
  CsvFormat Format(const std::vector<std::string_view>& columns) const;
  /// What was given, for another file, whose columns' names `option` gave: COLUMN=NAME with commas
  /// between. Throws an error of the call when it has one that the file has not.
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
