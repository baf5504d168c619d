#pragma once

#include <optional>
#include <string>

#include "lab/model/RunReader.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

class Options;

/// What all commands take that analyse runs.
struct AnalysisOptions {
  std::optional<std::string> detector;
  std::optional<std::string> plate;
  std::string format = "table";  ///< or "csv", "json"

  void AddTo(Options& options);
  /// The document at `path`, or the plate of it that was asked for.
  RunReader Open(const std::string& path) const;
};

/// Throws an error that says what could not be read of the document, when that is something; to be
/// called when the rest was shown.
void RequireWhole(const RunReader& run);

/// The error of work on the run, and what could not be read of the document, when that may be why.
Error WithDamage(const RunReader& run, const Error& error);

/// What `work` answers, which analyses the run. Its errors say what could not be read as well.
template <typename Work>
auto OrDamage(const RunReader& run, const Work& work) {
  try {
    return work();
  } catch (const Error& error) {
    throw WithDamage(run, error);
  }
}

}  // namespace vex2::tool
