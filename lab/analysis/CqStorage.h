#pragma once

#include <optional>
#include <string>

#include "lab/analysis/Cq.h"
#include "vex2/framework/Export.h"

class Vex2FileManager;

namespace vex2::lab {

/// Stores the quantification cycles of `analysis` in the analysis settings of `document`, where
/// applications look for them, with `Vex2FileManager::SetCtAt`; `GetCtAt` returns them. These
/// settings exist only in memory; no file is changed.
///
/// Results of a plate in a study are stored in the settings of that plate, others in those of the
/// document itself. A detector without settings gets new ones: the first two parameters are the
/// baseline cycles of its first well, the third is its threshold, and the others keep their initial
/// values. A well without a quantification cycle is set to `CCtEntry::kNoCt`.
VEX2_API void StoreCq(const CqAnalysis& analysis, Vex2FileManager& document);

/// The quantification cycle that is stored for a well, as a 32-bit number; nothing if there is
/// none.
VEX2_API std::optional<double> StoredCq(const Vex2FileManager& document, const AnalysedWell& well);

}  // namespace vex2::lab
