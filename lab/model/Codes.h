#pragma once

#include <string>
#include <string_view>

namespace vex2::lab {

/// A field of a document that holds a code of a few characters. Those that are not listed, as the
/// run code and the tasks of detectors, have no meaning that is known outside their application.
enum class CodeField { kAssay, kPlateType, kKind, kStatus };

/// What `code` means in `field`, with or without the blanks behind it. Empty when that is not
/// known.
std::string CodeMeaning(CodeField field, std::string_view code);

}  // namespace vex2::lab
