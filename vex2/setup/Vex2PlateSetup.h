#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"
#include "vex2/setup/Vex2WellSetup.h"

/// What stands in the wells of a plate, as a caller exchanges it. Owns the wells' records.
struct VEX2_API Vex2PlateSetup {
  Vex2WellSetup* cells = nullptr;  ///< made with new[], or null
  std::uint16_t count = 0;         ///< of the cells

  Vex2PlateSetup() = default;
  Vex2PlateSetup(const Vex2PlateSetup&) = delete;
  Vex2PlateSetup& operator=(const Vex2PlateSetup&) = delete;
  ~Vex2PlateSetup() { Clear(); }

  /// Releases the cells.
  void Clear();
  /// Makes `newCount` new cells in place of the old ones. Does nothing when that is 0.
  void Resize(std::uint16_t newCount);
};
