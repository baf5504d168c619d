#pragma once

#include <ostream>
#include <vector>

#include "lab/analysis/Cq.h"
#include "lab/exchange/Losses.h"
#include "lab/model/Document.h"

namespace vex2::lab {

/// Writes the plates of a document as an RDML archive of version 1.3 and lists what RDML cannot
/// hold. If `embeds`, the archive also contains the document's file. `analysis` is that of the
/// whole document, and may be null.
Losses WriteRdml(std::ostream& out, const Document& document,
                 const std::vector<Document::Plate>& plates, bool embeds,
                 const CqAnalysis* analysis = nullptr);

}  // namespace vex2::lab
