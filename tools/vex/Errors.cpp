#include "tools/vex/Errors.h"

#include <cerrno>
#include <cstring>
#include <iostream>

namespace vex2::tool {

namespace {

std::string composed(std::string_view file, std::string_view what,
                     std::optional<std::uint64_t> offset) {
  std::string text(file);
  if (offset) text += ": at byte " + std::to_string(*offset);
  return Printable(text.append(": ").append(what));
}

bool isTheCallsFault(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
    case EISDIR:
    case EACCES:
    case EPERM:
    case EROFS:
    case ELOOP:
    case ENAMETOOLONG:
    case EINVAL:
    case ENXIO:
    case ETXTBSY:
      return true;
    default:
      return false;
  }
}

bool isContinuation(char character) {
  return (static_cast<unsigned char>(character) & 0xC0U) == 0x80U;
}

// The bytes of the UTF-8 character at the start of `text`, 0 where there is none.
std::size_t characterLength(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const std::size_t length = byte(0) < 0x80   ? 1U
                             : byte(0) < 0xC2 ? 0U
                             : byte(0) < 0xE0 ? 2U
                             : byte(0) < 0xF0 ? 3U
                             : byte(0) < 0xF5 ? 4U
                                              : 0U;
  if (length > text.size()) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if (!isContinuation(text[i])) return 0;
  }
  const bool isControl = byte(0) < 0x20 || byte(0) == 0x7F || (byte(0) == 0xC2 && byte(1) < 0xA0);
  return isControl ? 0 : length;
}

}  // namespace

std::string Printable(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string result;
  while (!text.empty()) {
    const std::size_t length = characterLength(text);
    if (length > 0) {
      result += text.substr(0, length);
      text.remove_prefix(length);
      continue;
    }
    // Of the second range of control characters it is the second byte that says which.
    if (text.size() > 1 && text[0] == '\xC2' && isContinuation(text[1])) text.remove_prefix(1);
    const auto byte = static_cast<unsigned char>(text.front());
    result.append("\\x").append({kDigits[byte >> 4U], kDigits[byte & 0xFU]});
    text.remove_prefix(1);
  }
  return result;
}

Error::Error(ExitCode code, std::string_view file, std::string_view what,
             std::optional<std::uint64_t> offset)
    : std::runtime_error(composed(file, what, offset)), code_(code) {}

Error::Error(ExitCode code, std::string_view what)
    : std::runtime_error(Printable(what)), code_(code) {}

Error SystemError(std::string_view file, int error) {
  if (error == EAGAIN || error == EWOULDBLOCK) {
    return {ExitCode::kSystem, file, "another program is using it; try again when it is done"};
  }
  return {isTheCallsFault(error) ? ExitCode::kUsage : ExitCode::kSystem, file,
          std::strerror(error)};
}

void PrintLine(std::string_view text) {
  std::cout.flush();
  // One write, so that lines of several programs do not mix.
  std::cerr << ("vex: " + std::string(text) + "\n") << std::flush;
}

}  // namespace vex2::tool
