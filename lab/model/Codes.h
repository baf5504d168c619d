#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "lab/Text.h"

namespace vex2::lab {

/// A field of a document that holds a code of a few characters. Those that are not listed, as the
/// run code and the tasks of detectors, have no meaning that is known outside their application.
enum class CodeField { kAssay, kPlateType, kKind, kStatus };

/// What `code` means in `field`, with or without trailing blanks. Empty if the meaning is not
/// known.
std::string CodeMeaning(CodeField field, std::string_view code);

/// A header's field of fixed length as UTF-8, without trailing blanks.
template <std::size_t size>
std::string CodeText(const char (&field)[size]) {
  std::string text = ToUtf8({field, size});
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

}  // namespace vex2::lab
