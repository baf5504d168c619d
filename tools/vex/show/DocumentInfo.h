#pragma once

#include "lab/model/Document.h"
#include "tools/vex/Lab.h"
#include "tools/vex/text/Json.h"

namespace vex2::tool {

/// Everything that `vex info` says about a document, or about one plate of it. What a study says
/// of itself has the same of each of its plates under "plates".
nlohmann::ordered_json DescribeDocument(const Document& document, const Document::Plate& plate);

}  // namespace vex2::tool
