#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "lab/recover/RecoverReport.h"
#include "vex2/framework/Export.h"

namespace vex2::lab {

/// How a damaged document is recovered.
struct RecoverOptions {
  bool replace = false;  ///< replace an existing file at the target
  /// The advice that the error gives after "already exists; ".
  std::string existsHint = "set replace to overwrite it";
  /// Called often, with the number of bytes of the damaged file that are processed, and the size of
  /// that file. If it returns false, the work is cancelled: `Recover` throws an error of class
  /// `kInterrupted`, and saves nothing.
  std::function<bool(std::uint64_t done, std::uint64_t size)> progress = {};
};

/// Writes all that can be read of the document at `damaged` to a new document at `target`. Never
/// writes to `damaged`. The report lists what was lost and what was corrected. Takes time in
/// proportion to the size of the file, and little memory.
///
/// Throws `Error`, and leaves `target` unchanged, if
/// - `target` exists and may not be replaced, holds something other than a document, is the damaged
///   file itself, has further hard links, or is being recorded or changed,
/// - `damaged` contains nothing of a document, or
/// - the system refuses.
VEX2_API RecoverReport Recover(const std::filesystem::path& damaged,
                               const std::filesystem::path& target,
                               const RecoverOptions& options = {});

}  // namespace vex2::lab
