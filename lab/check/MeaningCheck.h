#pragma once

#include "lab/check/Findings.h"
#include "lab/model/Document.h"
#include "lab/model/HeaderFields.h"

namespace vex2::lab {

/// Adds what a document says that cannot be meant, though its bytes are in order: a status that is
/// none, detectors and tasks of wells that are unknown, wells that were measured and not set up;
/// and where its log says that this program recorded the run, readings that it cannot have written,
/// and cycles, times and temperatures that no run has.
void CheckMeaning(const Document& document, const HeaderFields& header, Findings& findings);

}  // namespace vex2::lab
