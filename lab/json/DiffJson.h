#pragma once

#include <string>
#include <vector>

#include "lab/compare/Diff.h"
#include "vex2/framework/Export.h"

namespace vex2::lab {

/// The differences as a JSON object with the keys "version", "one", "other" and "differences".
/// `one` and `other` are the paths of the documents.
VEX2_API std::string DiffJson(const std::vector<Difference>& differences, const std::string& one,
                              const std::string& other);

}  // namespace vex2::lab
