#pragma once

#include <string>

#include "lab/check/Findings.h"
#include "lab/text/TextForm.h"

namespace vex2::lab {

/// The findings in the document at `file`, as text for users: one line for the document, and one
/// paragraph for each finding. Notes are always counted, but shown only if `withNotes`.
std::string FindingsText(const std::string& file, const Findings& findings, bool withNotes,
                         const TextForm& form);

}  // namespace vex2::lab
