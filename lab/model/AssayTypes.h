#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vex2::lab {

/// The four-character code of a plate's assay for `text`, which may lack the trailing blanks.
/// Returns nothing for any other text, including the code of studies.
std::optional<std::string> PlateAssayCode(std::string_view text);

/// The codes that a plate can have, in the form "AbsQ (absolute quantification), ...", for errors.
std::string PlateAssayList();
/// The codes that a plate can have with their meanings, one per line, for help.
std::string PlateAssayTable();

}  // namespace vex2::lab
