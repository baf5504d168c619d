#pragma once

#include <string>
#include <vector>

#include "lab/check/Findings.h"
#include "lab/check/RecordCheck.h"
#include "lab/model/Document.h"
#include "lab/model/HeaderFields.h"

namespace vex2::lab {

/// Adds what is wrong with the plate and its wells in the header at `offset`. Does not check the
/// offsets in the header.
void CheckHeader(const HeaderFields& header, const std::string& name, std::uint64_t offset,
                 Findings& findings);

/// Adds what is wrong with the offsets in the document's header. `records` are the records to which
/// these offsets can lead. Do not call it for the header of a plate in a study, whose offsets have
/// no meaning.
void CheckPositions(const HeaderFields& header, const std::vector<PositionedRecord>& records,
                    const Document& document, Findings& findings);

}  // namespace vex2::lab
