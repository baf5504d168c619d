#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "lab/exchange/Losses.h"
#include "lab/model/Document.h"
#include "lab/model/DocumentFile.h"

namespace vex2::lab {

/// Writes all values of a document as one JSON object, the plates of a study within it; readings
/// are arrays by block, frame and well, of 40 stored values each. With `asLines` the readings stand
/// after the object, a frame a line, so that a reader needs to hold one line at a time. Lists what
/// the object does not hold: records of kinds that have no values.
Losses WriteWholeJson(std::ostream& out, const Document& document, bool asLines);

/// Whether the text begins as `WriteWholeJson` begins it.
bool IsWholeJson(std::string_view text);

/// Makes what the text says the content of `document`, which must be empty. The text is either form
/// of JSON. Errors name `file` and the place in the JSON.
void ReadWholeJson(std::string_view text, const std::string& file, DocumentFile& document);

}  // namespace vex2::lab
