#pragma once

#include <cstdint>

namespace vex2 {

/// Sets a text that a record owns. `buffer`, made with new[], always has a zero byte after its
/// `held` characters. A longer text than before gets a new buffer; any other text uses the old one,
/// so an empty text in a new record needs no buffer. If `text` is null, only the length is set, and
/// a new buffer holds zeros. A negative `length` changes no characters and is stored in `held`.
void SetText(char*& buffer, std::int32_t& held, const char* text, std::int32_t length);

}  // namespace vex2
