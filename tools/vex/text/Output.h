#pragma once

#include <fstream>
#include <ostream>
#include <string>

namespace vex2::tool {

/// Where a command's result goes: a file, or standard output. A failure to write is an error that
/// names the file, so that no result is cut short in silence.
class Output {
 public:
  /// Opens and empties `path`; standard output for an empty path and "-".
  explicit Output(const std::string& path);

  std::ostream& Stream() { return *stream_; }
  /// To be called at the end: throws when something was not written.
  void Finish();

 private:
  std::string name_;
  std::ofstream file_;
  std::ostream* stream_;
};

}  // namespace vex2::tool
