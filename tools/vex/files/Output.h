#pragma once

#include <fstream>
#include <ostream>
#include <sstream>
#include <string>

namespace vex2::tool {

/// Writes the result of a command to a file or to standard output. A file appears, or is replaced,
/// only when the result is complete and on the disk; until then, and after a failure, the old file
/// is unchanged. Pipes and devices are written to directly. If a write fails, an error names the
/// file, so that no result is cut off silently.
class Output {
 public:
  /// Opens standard output if `path` is empty or "-". `OutputFiles` decides whether `path` may be
  /// written.
  explicit Output(const std::string& path);

  std::ostream& Stream() { return *stream_; }
  /// Call this at the end: it puts the file in its place. Throws if something could not be written.
  void Finish();

 private:
  void replaceFile();

  std::string path_;
  std::ostringstream text_;  ///< the new content of the file
  std::ofstream device_;
  std::ostream* stream_;
};

/// Flushes `stream`. If this write or an earlier one failed, throws an error with the system's
/// reason. `name` is the name of the stream in the error.
void FinishStream(std::ostream& stream, const std::string& name);

/// Whether `path` means standard output or standard error: an empty path, "-", or a name like
/// /dev/stdout.
bool IsStandardStream(const std::string& path);

}  // namespace vex2::tool
