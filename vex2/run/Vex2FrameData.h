#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"
#include "vex2/run/Vex2WellRecord.h"

/// One frame: a well record for each well, in the order of the data block's wells. Owns its
/// records.
struct VEX2_API Vex2FrameData {
  Vex2WellRecord* records = nullptr;  ///< `wellCount` records made with new[], or null
  std::uint16_t wellCount = 0;        ///< the number of records

  Vex2FrameData() = default;
  /// A frame of `count` records that are all zero.
  explicit Vex2FrameData(std::uint16_t count) { Resize(count); }
  Vex2FrameData(const Vex2FrameData&) = delete;
  Vex2FrameData& operator=(const Vex2FrameData&) = delete;
  /// Takes the records of `other`, which has none afterwards.
  Vex2FrameData(Vex2FrameData&& other) noexcept;
  /// Releases its records and takes those of `other`, which has none afterwards.
  Vex2FrameData& operator=(Vex2FrameData&& other) noexcept;
  ~Vex2FrameData() { delete[] records; }

  /// Replaces the records by `count` new ones that are all zero; by none if `count` is 0.
  void Resize(std::uint16_t count);
};
