#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/vex/Errors.h"

namespace vex2::tool {

class Options;

/// The documents of a command that works on any number of them, one after the other or side by
/// side: the arguments FILE..., which can be lists of files, and the option -j.
class ManyFiles {
 public:
  void AddTo(Options& options);

  /// The documents that were given, in their order: "@LIST" stands for the paths in the file LIST,
  /// "-" for those on standard input, each a line. Throws an error when a list cannot be read, or
  /// names no file.
  std::vector<std::string> List() const;

  /// Shows a result. Runs on the main thread.
  using Shown = std::function<ExitCode()>;
  /// Calls `work` with each of `files`, up to -j of them at once on threads of their own; and what
  /// it answers in the order of the files. An error of a file is printed in its place, and the
  /// others go on. Answers the worst exit code. `work` must not print.
  ExitCode ForEach(const std::vector<std::string>& files,
                   const std::function<Shown(const std::string& file)>& work) const;

 private:
  std::vector<std::string> arguments_;
  std::optional<std::uint32_t> jobs_;
};

}  // namespace vex2::tool
