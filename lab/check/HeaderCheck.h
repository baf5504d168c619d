#pragma once

#include <string>
#include <vector>

#include "lab/check/Findings.h"
#include "lab/check/RecordCheck.h"
#include "lab/model/Document.h"
#include "lab/model/HeaderFields.h"

namespace vex2::lab {

/// Adds what is wrong with a header at `offset` but for its positions: the plate and its wells.
void CheckHeader(const HeaderFields& header, const std::string& name, std::uint64_t offset,
                 Findings& findings);

/// Adds what is wrong with the header's positions, given the records that they can lead to. The
/// header of a plate in a study has none that mean anything.
void CheckPositions(const HeaderFields& header, const std::vector<PositionedRecord>& records,
                    const Document& document, Findings& findings);

}  // namespace vex2::lab
