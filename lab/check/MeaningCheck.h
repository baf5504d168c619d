#pragma once

#include "lab/check/Findings.h"
#include "lab/model/Document.h"
#include "lab/model/HeaderFields.h"

namespace vex2::lab {

/// Adds findings about content that is stored correctly but makes no sense: an unknown acquisition
/// status; unknown detectors and tasks of wells; wells that were measured but not set up. If the
/// log says that this program recorded the run, also adds readings that it cannot have written, and
/// cycles, times and temperatures that no run has.
void CheckMeaning(const Document& document, const HeaderFields& header, Findings& findings);

}  // namespace vex2::lab
