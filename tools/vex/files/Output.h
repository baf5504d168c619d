#pragma once

#include <fstream>
#include <ostream>
#include <sstream>
#include <string>

namespace vex2::tool {

/// Where a command's result goes: a file, or standard output. A file appears, or is replaced, when
/// the result is complete and on the disk; until then, and after a failure, it is as it was. Pipes
/// and devices are written to as they are. A failure to write is an error that names the file, so
/// that no result is cut short in silence.
class Output {
 public:
  /// Standard output for an empty path and "-". `OutputFiles` says whether `path` may be written.
  explicit Output(const std::string& path);

  std::ostream& Stream() { return *stream_; }
  /// To be called at the end: puts the file in place; throws when something was not written.
  void Finish();

 private:
  void replaceFile();

  std::string path_;
  std::ostringstream text_;  ///< what the file is to hold
  std::ofstream device_;
  std::ostream* stream_;
};

/// Writes out what `stream` still buffers. Throws an error with the system's reason, also of an
/// earlier write, when not all of it was written; `name` is what the error calls it.
void FinishStream(std::ostream& stream, const std::string& name);

/// Whether `path` is where standard output or standard error goes: an empty path, "-", and names
/// like /dev/stdout.
bool IsStandardStream(const std::string& path);

}  // namespace vex2::tool
