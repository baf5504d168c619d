#pragma once

#include "tools/vex/Document.h"
#include "tools/vex/Findings.h"
#include "tools/vex/HeaderFields.h"
#include "tools/vex/RecordCheck.h"

namespace vex2::tool {

/// Adds what is wrong with the end of a document: where the reader gives up before it, and bytes
/// behind the last record. What an interrupted commit leaves there is a warning: nothing that was
/// committed is lost.
void CheckEnd(CFile& file, const Document& document, const HeaderFields& header,
              const RecordCheck& records, Findings& findings);

}  // namespace vex2::tool
