#pragma once

#include <string>
#include <string_view>

#include "lab/recover/RecoverReport.h"
#include "lab/text/TextForm.h"

namespace vex2::lab {

/// Tells a person what became of the damaged document at `source`, now at `target`. `all` is what
/// tells of all places where there are too many for a screen: "--json".
std::string RecoverText(const RecoverReport& report, const std::string& source,
                        const std::string& target, const TextForm& form, std::string_view all);

}  // namespace vex2::lab
