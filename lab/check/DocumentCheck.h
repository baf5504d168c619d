#pragma once

#include <string>

#include "lab/check/Findings.h"

namespace vex2::lab {

/// Looks for everything that can be wrong with the document at `path`, and with the plates in it.
/// Throws an error when the file cannot be read; one that is no document is a finding.
Findings CheckDocument(const std::string& path);

}  // namespace vex2::lab
