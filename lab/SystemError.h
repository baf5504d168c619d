#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "lab/Error.h"

namespace vex2::lab {

/// Makes the error for an operation on `file` that the system refused. `error` is the number of
/// `errno`. The class of the error is `kUsage` if the path does not exist or may not be accessed,
/// otherwise `kSystem`. `offset` is the offset in bytes at which a transfer failed, if it is known.
Error SystemError(std::string_view file, int error,
                  std::optional<std::uint64_t> offset = std::nullopt);

/// `text` as a message can show it: control characters, and bytes that are not valid UTF-8, are
/// replaced by `\xNN`.
std::string Escaped(std::string_view text);

}  // namespace vex2::lab
