#pragma once

#include <string>
#include <string_view>

#include "vex2/manager/Vex2FileManager.h"

namespace vex2::lab {

/// Throws an error unless `code` can be an acquisition status: four printable ASCII characters that
/// do not look like a misspelled known status. `path` is that of the document, for the error.
void RequireStatusCode(std::string_view code, const std::string& path);

/// Sets the acquisition status of the document in memory to `code`.
void StoreStatus(Vex2FileManager& document, std::string_view code);

/// Writes the acquisition status into the header of the document at `path`, and changes nothing
/// else. The run may be in progress, so that a run can be ended whose recorder was killed. The
/// caller must hold the document's lock. Throws an error with the reason. `SetRunStatus` is the
/// public operation, which takes the lock.
void WriteStatus(const std::string& path, const std::string& code);

}  // namespace vex2::lab
