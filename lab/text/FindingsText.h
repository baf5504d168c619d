#pragma once

#include <string>

#include "lab/check/Findings.h"
#include "lab/text/TextForm.h"

namespace vex2::lab {

/// What was found in the document at `file`, for people: a line for the document, and a paragraph
/// for each finding. Notes are counted, and shown only `withNotes`.
std::string FindingsText(const std::string& file, const Findings& findings, bool withNotes,
                         const TextForm& form);

}  // namespace vex2::lab
