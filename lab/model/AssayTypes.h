#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vex2::lab {

/// The code of four characters of a plate's assay that `text` is, with or without blanks at its
/// end; nothing for any other text, even for the code of studies.
std::optional<std::string> PlateAssayCode(std::string_view text);

/// "AbsQ (absolute quantification), ...": the codes that a plate can have, for errors.
std::string PlateAssayList();
/// The same for help, a line each.
std::string PlateAssayTable();

}  // namespace vex2::lab
