#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/vex/Errors.h"

namespace vex2::tool {

class Options;

/// The arguments FILE... and the option -j of a command that works on any number of documents. An
/// argument can be a list of files.
class FileArguments {
 public:
  void AddTo(Options& options);

  /// The paths of the given documents, in order. "@LIST" means the paths in the file LIST, "-" the
  /// paths on standard input, one on each line. Throws an error if a list cannot be read or is
  /// empty.
  std::vector<std::string> List() const;

  /// Prints a result. Runs on the main thread.
  using Shown = std::function<ExitCode()>;
  /// Calls `work` with each of `files`, on separate threads for up to -j files at once. Then calls
  /// the functions that `work` returned, in the order of the files. If a file causes an error,
  /// prints the error in its turn and continues with the other files. Returns the highest exit
  /// code. `work` must not print.
  ExitCode ForEach(const std::vector<std::string>& files,
                   const std::function<Shown(const std::string& file)>& work) const;

 private:
  std::vector<std::string> arguments_;
  std::optional<std::uint32_t> jobs_;
};

}  // namespace vex2::tool
