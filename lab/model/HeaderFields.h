#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "vex2/format/HeaderLayout.h"
#include "vex2/framework/CFile.h"

namespace vex2::lab {

/// The fields of a header that can be wrong, as stored in the file.
struct HeaderFields {
  std::string assay;
  std::string plateType;
  std::uint16_t rows = 0;
  std::uint16_t columns = 0;
  std::uint32_t programPosition = 0;
  std::string status;
  std::uint32_t rawDataPosition = 0;
  std::vector<std::uint32_t> usage;  ///< for each row, a mask of the wells in use

  std::uint32_t Wells() const { return std::uint32_t{rows} * columns; }
  /// Whether further frames may come: the run is in progress or has not started.
  bool IsUnfinished() const { return IsRunning() || status == RunStatus::kNotStarted; }
  /// Whether the header has no offset of a data block yet, so that the bytes after the records may
  /// be an interrupted first commit.
  bool AwaitsFirstCommit() const { return IsUnfinished() && rawDataPosition == 0; }
  bool IsRunning() const { return status == RunStatus::kInProgress; }
};

/// Reads the header at `offset` of the open file. Fields after the end of the file are 0 or empty.
HeaderFields ReadHeaderFields(CFile& file, std::uint64_t offset);

}  // namespace vex2::lab
