#pragma once

#include <filesystem>

#include "lab/check/Findings.h"

namespace vex2::lab {

/// Looks for everything that can be wrong with the document at `path`, and with the plates in it,
/// without changing it. A file that is not a document gives a finding, not an error. Throws
/// `Error` when the file cannot be read.
VEX2_API Findings Check(const std::filesystem::path& path);

}  // namespace vex2::lab
