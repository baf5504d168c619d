#pragma once

#include <string>
#include <vector>

#include "tools/vex/document/Document.h"
#include "tools/vex/document/HeaderFields.h"
#include "tools/vex/rescue/Findings.h"
#include "tools/vex/rescue/RecordCheck.h"

namespace vex2::tool {

/// Adds what is wrong with a header at `offset` but for its positions: the plate and its wells.
void CheckHeader(const HeaderFields& header, const std::string& name, std::uint64_t offset,
                 Findings& findings);

/// Adds what is wrong with the header's positions, given the records that they can lead to. The
/// header of a plate in a study has none that mean anything.
void CheckPositions(const HeaderFields& header, const std::vector<PositionedRecord>& records,
                    const Document& document, Findings& findings);

}  // namespace vex2::tool
