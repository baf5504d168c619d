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

}  // namespace vex2::tool
