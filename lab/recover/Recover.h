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
  bool replace = false;  ///< replace a file at the target
  /// Follows "already exists; " in the error: what the caller can do.
  std::string existsHint = "set replace to overwrite it";
  /// Called often with the bytes of the damaged file that are done, and all of them. False cancels
  /// the work: `Recover` throws an error of class `kInterrupted`, and nothing was saved.
  std::function<bool(std::uint64_t done, std::uint64_t size)> progress = {};
};

/// Puts together at `target` what is whole in the document at `damaged`, which is never written to.
/// The report says what was lost and what was put right. Takes time in proportion to the file and
/// little memory.
///
/// Throws `Error`, and leaves what is at `target` as it was, when `target` exists and is not to be
/// replaced, when it holds something other than a document, is the damaged file itself, has other
/// names (hard links), or is being recorded or changed, when nothing of a document was found, or
/// when the system refuses.
VEX2_API RecoverReport Recover(const std::filesystem::path& damaged,
                               const std::filesystem::path& target,
                               const RecoverOptions& options = {});

}  // namespace vex2::lab
