#pragma once

#include <optional>
#include <string>

#include "lab/formats/ImportFormat.h"

namespace vex2::lab {

/// The first bytes of the file at `path`, from which its format can be recognised. Throws an error
/// if the file cannot be read.
std::string HeadOf(const std::string& path);

/// The format of a file that begins with `head`; nothing if it has none of the formats. Any ZIP
/// archive and any XML is taken as RDML, so that the error of an import says what is wrong with it.
std::optional<ImportFormat> FormatOfHead(std::string head);

}  // namespace vex2::lab
