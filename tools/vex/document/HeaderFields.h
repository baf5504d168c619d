#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "vex2/framework/CFile.h"

namespace vex2::tool {

/// The fields of a header that can be wrong, as they stand in a file.
struct HeaderFields {
  static constexpr std::uint64_t kAssayAt = 8;
  static constexpr std::uint64_t kTypeAt = 16;
  static constexpr std::uint64_t kRowsAt = 20;
  static constexpr std::uint64_t kColumnsAt = 22;
  static constexpr std::uint64_t kProgramAt = 24;
  static constexpr std::uint64_t kStatusAt = 64;
  static constexpr std::uint64_t kRawDataAt = 68;
  static constexpr std::uint64_t kUsageAt = 72;
  /// Rows whose masks lie within a header of 1024 bytes.
  static constexpr std::uint16_t kMostRows = 238;

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
  bool IsUnfinished() const { return status == "PROG" || status == "ZERO"; }
  bool IsRunning() const { return status == "PROG"; }
};

/// The wells of a plate of this type; nothing for a type that is nobody's.
std::optional<std::uint32_t> WellsOfType(const std::string& plateType);

/// Reads the header that begins at `offset` of the open file. Fields that the file ends before are
/// 0 or empty.
HeaderFields ReadHeaderFields(CFile& file, std::uint64_t offset);

}  // namespace vex2::tool
