#pragma once

#include <string>
#include <string_view>

#include "lab/recover/RecoverReport.h"
#include "lab/text/TextForm.h"

namespace vex2::lab {

/// The report of the recovery from the document at `source` to `target`, as text for users. `all`
/// is the option that prints all losses: "--json". The text names it if there are more losses than
/// fit on a screen.
std::string RecoverText(const RecoverReport& report, const std::string& source,
                        const std::string& target, const TextForm& form, std::string_view all);

}  // namespace vex2::lab
