#include "vex2/setup/OwnedText.h"

#include <cstddef>
#include <cstring>

namespace vex2 {

void SetText(char*& buffer, std::int32_t& held, const char* text, std::int32_t length) {
  char* target = buffer;
  if (length > held) {
    const std::size_t room = length > 0 ? static_cast<std::size_t>(length) + 1 : 1;
    target = text != nullptr ? new char[room] : new char[room]();
  }
  // The new text may be part of the old one, so the old buffer is released last.
  if (length > 0 && text != nullptr) std::memmove(target, text, static_cast<std::size_t>(length));
  if (length >= 0 && target != nullptr) target[length] = '\0';
  if (target != buffer) delete[] buffer;
  buffer = target;
  held = length;
}

}  // namespace vex2
