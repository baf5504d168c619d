#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "lab/exchange/Losses.h"
#include "lab/model/Document.h"
#include "lab/model/DocumentFile.h"

namespace vex2::lab {

/// Writes all values of a document as one JSON object, which also contains the plates of a study.
/// Readings are arrays by block, frame and well, of 40 stored values each. If `asLines`, the
/// readings follow the object, one frame per line, so that a reader needs to hold only one line at
/// a time. Lists what the object does not hold: records of kinds that have no values.
Losses WriteWholeJson(std::ostream& out, const Document& document, bool asLines);

/// Reads a text of either form into `document`, which must be empty. Errors name `file` and the
/// path in the JSON.
void ReadWholeJson(std::string_view text, const std::string& file, DocumentFile& document);

}  // namespace vex2::lab
