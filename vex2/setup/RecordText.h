#pragma once

#include <cstdint>

namespace vex2 {

/// Sets a text that a record owns: `buffer`, made with new[], always has a zero byte behind its
/// `held` characters. A text that is longer than the one before gets a new buffer, any other
/// takes the old one; so an empty text in a new record needs none. With a null `text` the
/// characters are zeros where the buffer is new. A negative `length` empties nothing and is held.
void SetText(char*& buffer, std::int32_t& held, const char* text, std::int32_t length);

}  // namespace vex2
