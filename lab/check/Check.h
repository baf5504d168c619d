#pragma once

#include <filesystem>
#include <string>

#include "lab/check/Findings.h"

namespace vex2::lab {

/// The names that findings use for the operations that they advise, as in "Repair cuts them off". A
/// host that offers the operations under other names can set those names.
struct OperationNames {
  std::string repair = "Repair";       ///< corrects a document in place
  std::string recover = "Recover";     ///< takes what is whole into a new document
  std::string resume = "RunRecorder";  ///< resumes an interrupted run
  std::string import = "Import";       ///< makes a document of a file in another format
  std::string upgrade = "DocumentEditor with upgradeBlocks";  ///< saves blocks as version 2
  std::string read = "RunReader";                             ///< reads the readings
  std::string setWells = "DocumentEditor";                    ///< sets the contents of the wells
  std::string setStatus = "SetRunStatus";                     ///< sets the acquisition status
};

/// Looks for everything that can be wrong with the document at `path` and with the plates in it,
/// and changes nothing. If the file is not a document, returns a finding that says so. The findings
/// call the advised operations by `names`. Throws `Error` if the file cannot be read.
VEX2_API Findings Check(const std::filesystem::path& path, const OperationNames& names = {});

}  // namespace vex2::lab
