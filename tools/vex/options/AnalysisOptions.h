#pragma once

#include <optional>
#include <string>

#include "lab/model/RunReader.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

class Options;

/// The options of all commands that analyse runs.
struct AnalysisOptions {
  std::optional<std::string> detector;
  std::optional<std::string> plate;
  std::string format = "table";  ///< or "csv", "json"

  void AddTo(Options& options);
  /// Opens the document at `path`, or the plate in it that --plate names.
  RunReader Open(const std::string& path) const;
};

/// Throws an error that describes what could not be read, unless the whole document was read. Call
/// this after everything else was printed.
void RequireWhole(const RunReader& run);

/// Returns `error`, extended by what could not be read of the document if that may be the cause.
Error WithDamage(const RunReader& run, const Error& error);

/// Returns the result of `work`, which analyses the run. If it throws, the error also describes
/// what could not be read of the document.
template <typename Work>
auto OrDamage(const RunReader& run, const Work& work) {
  try {
    return work();
  } catch (const Error& error) {
    throw WithDamage(run, error);
  }
}

}  // namespace vex2::tool
