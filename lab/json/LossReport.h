#pragma once

#include <string>

#include "lab/exchange/Losses.h"
#include "vex2/framework/Export.h"

namespace vex2::lab {

/// The report of all losses as a JSON object on several lines, with the key "version". `source` and
/// `target` are the paths of the files.
VEX2_API std::string LossReportJson(const Losses& losses, const std::string& source,
                                    const std::string& target);

}  // namespace vex2::lab
