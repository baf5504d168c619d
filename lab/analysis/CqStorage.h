#pragma once

#include <optional>
#include <string>

#include "lab/analysis/Cq.h"
#include "vex2/framework/Export.h"

class Vex2FileManager;

namespace vex2::lab {

/// Stores the quantification cycles of `analysis` in the analysis settings of `document`, where
/// applications look for them: `Vex2FileManager::SetCtAt`, and back with `GetCtAt`. Settings exist
/// in memory only; no file is changed.
///
/// Results of a plate in a study go to the settings of that plate, others to those of the document
/// itself. A detector without settings gets them: the first two parameters are the cycles of the
/// baseline that its first well has, the third is its threshold, and the others stay as new. A well
/// without a quantification cycle is set to `CCtEntry::kNoCt`.
VEX2_API void StoreCq(const CqAnalysis& analysis, Vex2FileManager& document);

/// The quantification cycle that is stored for a well; nothing if there is none. With the precision
/// in which documents keep it, 32 bits.
VEX2_API std::optional<double> StoredCq(const Vex2FileManager& document, const AnalysedWell& well);

}  // namespace vex2::lab
