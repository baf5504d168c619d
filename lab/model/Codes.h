#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "lab/Text.h"

namespace vex2::lab {

/// A field of a document with a code of a few characters. Other code fields, such as the run code
/// and the tasks of detectors, have a meaning only within their application.
enum class CodeField { kAssay, kPlateType, kKind, kStatus };

/// The meaning of `code` in `field`; `code` may lack its trailing blanks. Empty if the meaning is
/// not known.
std::string CodeMeaning(CodeField field, std::string_view code);

/// Converts a header field of fixed length to UTF-8 without trailing blanks.
template <std::size_t size>
std::string CodeText(const char (&field)[size]) {
  std::string text = ToUtf8({field, size});
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

}  // namespace vex2::lab
