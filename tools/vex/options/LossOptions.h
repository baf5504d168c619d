#pragma once

#include <string>
#include <vector>

#include "lab/exchange/Losses.h"
#include "tools/vex/files/OutputFiles.h"

namespace vex2::tool {

class Options;

/// Reports what an export or an import lost or changed: on standard error, in the file of --report,
/// and with --strict in the exit code.
class LossOptions {
 public:
  /// Adds --report and --strict.
  void AddOptions(Options& options);

  bool HasReport() const { return !report_.empty(); }
  /// Adds the report to the files that the command writes.
  void Claim(OutputFiles& files) const;
  /// Prints a line for each kind of loss, and writes the report. `source` and `target` are the
  /// paths of the files; messages begin with `about`.
  ExitCode Tell(const Losses& losses, const std::string& about, const std::string& source,
                const std::string& target) const;
  /// Does the same, but adds the lines to `lines` instead of printing them.
  ExitCode Write(const Losses& losses, const std::string& about, const std::string& source,
                 const std::string& target, std::vector<std::string>& lines) const;
  /// Does the same without any lines.
  ExitCode Report(const Losses& losses, const std::string& source, const std::string& target) const;

 private:
  std::string report_;
  bool isStrict_ = false;
};

}  // namespace vex2::tool
