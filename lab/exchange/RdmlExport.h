#pragma once

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>

#include "lab/analysis/Cq.h"
#include "lab/exchange/Losses.h"
#include "vex2/framework/Export.h"

namespace vex2::lab {

/// What an RDML file of a document is to hold.
struct RdmlOptions {
  /// The name of the one plate of a study that is written, without the study; nothing: all plates,
  /// each as a run.
  std::optional<std::string> plate = {};
  /// Whether the document is in the archive, too, so that an import gives back its very bytes.
  bool embedsDocument = true;
  /// Quantification cycles are found in this way, as `AnalyseCq` does, and written with their
  /// method, baselines and thresholds; nothing: none are written.
  std::optional<CqMethod> cq = {};
};

/// Writes the document at `path` to `out` as an RDML archive of version 1.3: experiment, samples
/// with types and quantities, targets, dyes, thermal cycling conditions where the program's text is
/// one of steps, the run with its plate, and the readings of which this library knows the meaning,
/// by wells. The same document makes the same bytes. Returns what RDML cannot hold, even if the
/// document is embedded.
///
/// Throws `Error` when the document cannot be read, `kNoSuchPlate` for a plate that it does not
/// have, and as `AnalyseCq` does. What was written to `out` is of no use then.
VEX2_API Losses ExportRdml(const std::filesystem::path& path, std::ostream& out,
                           const RdmlOptions& options = {});

}  // namespace vex2::lab
