#pragma once

#include <filesystem>
#include <string>

#include "lab/check/Findings.h"

namespace vex2::lab {

/// What findings call the operations that they advise, as in "Repair cuts them off". A program that
/// offers them under names of its own gives those.
struct OperationNames {
  std::string repair = "Repair";                              ///< corrects a document in place
  std::string recover = "Recover";                            ///< saves what is whole of a document
  std::string resume = "RunRecorder";                         ///< resumes an interrupted run
  std::string upgrade = "DocumentEditor with upgradeBlocks";  ///< saves blocks as version 2
  std::string read = "RunReader";                             ///< reads the readings
  std::string setWells = "DocumentEditor";                    ///< sets up the wells
  std::string setStatus = "SetRunStatus";                     ///< sets the acquisition status
};

/// Looks for everything that can be wrong with the document at `path`, and with the plates in it,
/// without changing it. A file that is not a document gives a finding, not an error. `names` are
/// used in what the findings advise. Throws `Error` when the file cannot be read.
VEX2_API Findings Check(const std::filesystem::path& path, const OperationNames& names = {});

}  // namespace vex2::lab
