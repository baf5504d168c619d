#pragma once

#include <string>
#include <string_view>

#include "vex2/manager/Vex2FileManager.h"

namespace vex2::lab {

/// Throws an error unless `code` can be a run's status: four plain characters, and not one that is
/// meant to be a known one. `path` is the document's, for the error.
void RequireStatusCode(std::string_view code, const std::string& path);

/// Makes `code` the status of the document in memory.
void StoreStatus(Vex2FileManager& document, std::string_view code);

/// Writes the status into the header of the document at `path`, and changes nothing else. Works
/// on a document whose run is in progress, too: it is the remedy for one whose recorder is gone.
/// The caller holds the document's lock. Throws an error with the reason. `SetRunStatus` does the
/// same for programs, and takes the lock.
void WriteStatus(const std::string& path, const std::string& code);

}  // namespace vex2::lab
