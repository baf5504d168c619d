#pragma once

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>

#include "lab/analysis/Cq.h"
#include "lab/exchange/Losses.h"
#include "vex2/framework/Export.h"

namespace vex2::lab {

/// What to write to the RDML file of a document.
struct RdmlOptions {
  /// The name of a plate of a study. Only that plate is written, as a single run. If it is not
  /// given, all plates are written, each as a run.
  std::optional<std::string> plate = {};
  /// Whether the archive also contains the document itself, so that an import restores it byte for
  /// byte.
  bool embedsDocument = true;
  /// The method of finding quantification cycles, see `AnalyseCq`. The cycles are written with
  /// their baselines and thresholds. If it is not given, no cycles are written.
  std::optional<CqMethod> cq = {};
};

/// Writes the document at `path` to `out` as an RDML archive of version 1.3: experiment, samples
/// with types and quantities, targets, dyes, thermal cycling conditions if the program's text has
/// steps, the run with its plate, and the readings of each well whose meaning is known. The same
/// document always gives the same bytes. Returns what RDML cannot hold, even if the document is
/// embedded; `Losses::hasDocument` tells that.
///
/// Throws `Error` if the document cannot be read, `kNoSuchPlate` for a plate that it does not have,
/// and the errors of `AnalyseCq`. The bytes in `out` are not usable then.
VEX2_API Losses ExportRdml(const std::filesystem::path& path, std::ostream& out,
                           const RdmlOptions& options = {});

}  // namespace vex2::lab
