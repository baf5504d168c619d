#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "lab/analysis/Cq.h"
#include "lab/exchange/ExchangedRun.h"
#include "lab/exchange/Losses.h"
#include "lab/exchange/PlateSource.h"

namespace vex2::lab {

/// Writes the readings of one stage of a plate as an RDES table, and lists in `losses` what the
/// table cannot hold. If `listsRest`, also lists everything in the plate besides the readings. A
/// table of an amplification has the quantification cycles of `analysis`, which may be null.
void WriteRdes(std::ostream& out, const PlateSource& source, bool melting, bool listsRest,
               Losses& losses, const CqAnalysis* analysis = nullptr);

/// Whether the plate has readings in this stage whose meaning is known.
bool HasStage(const PlateSource& source, bool melting);

/// Whether the text begins like an RDES table.
bool IsRdes(std::string_view text);

/// Reads the run in the RDES table `text`. Errors name `file`, the row and the column.
ExchangedRun ReadRdes(std::string_view text, const std::string& file, Losses& losses);

}  // namespace vex2::lab
