#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "vex2/format/HeaderLayout.h"
#include "vex2/framework/CFile.h"

namespace vex2::lab {

/// The fields of a header that can be wrong, as they are in a file.
struct HeaderFields {
  std::string assay;
  std::string plateType;
  std::uint16_t rows = 0;
  std::uint16_t columns = 0;
  std::uint32_t programPosition = 0;
  std::string status;
  std::uint32_t rawDataPosition = 0;
  std::vector<std::uint32_t> usage;  ///< a mask for each row

  std::uint32_t Wells() const { return std::uint32_t{rows} * columns; }
  /// Whether a recorder may be at work, or have been cut off: frames are still to come.
  bool IsUnfinished() const { return IsRunning() || status == RunStatus::kNotStarted; }
  /// Whether the header leads to no data block yet, so that the bytes after the records may be an
  /// interrupted first commit.
  bool AwaitsFirstCommit() const { return IsUnfinished() && rawDataPosition == 0; }
  bool IsRunning() const { return status == RunStatus::kInProgress; }
};

/// Reads the header that begins at `offset` of the open file. Fields that the file ends before are
/// 0 or empty.
HeaderFields ReadHeaderFields(CFile& file, std::uint64_t offset);

}  // namespace vex2::lab
