#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "lab/Error.h"

namespace vex2::lab {

/// What the system refused to do with `file`: the call is at fault when the path leads nowhere or
/// to what may not be touched, the system for all else. `error` is a number of `errno`, `offset` is
/// where a transfer failed.
Error SystemError(std::string_view file, int error,
                  std::optional<std::uint64_t> offset = std::nullopt);

/// `text` for a line of a message: what a terminal would obey, and what is no character, is shown
/// as `\xNN`.
std::string Escaped(std::string_view text);

}  // namespace vex2::lab
