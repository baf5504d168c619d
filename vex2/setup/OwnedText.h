#pragma once

#include <cstdint>

namespace vex2 {

/// Sets a text that a record owns. `held` is its number of characters; `buffer`, made with new[],
/// has the characters and a zero byte after them. Allocates a new buffer only if the text becomes
/// longer, so an empty text in a new record needs no buffer. If `text` is null, sets only the
/// length; a new buffer then holds zeros. A negative `length` changes no characters and is stored
/// in `held`.
void SetText(char*& buffer, std::int32_t& held, const char* text, std::int32_t length);

}  // namespace vex2
