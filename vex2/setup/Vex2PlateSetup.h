#pragma once

#include <cstdint>

#include "vex2/framework/Export.h"
#include "vex2/setup/Vex2WellSetup.h"

/// The setup of the wells of a plate, as callers pass it. Owns the records of the wells.
struct VEX2_API Vex2PlateSetup {
  Vex2WellSetup* cells = nullptr;  ///< made with new[], or null
  std::uint16_t count = 0;         ///< the number of cells

  Vex2PlateSetup() = default;
  Vex2PlateSetup(const Vex2PlateSetup&) = delete;
  Vex2PlateSetup& operator=(const Vex2PlateSetup&) = delete;
  ~Vex2PlateSetup() { Clear(); }

  /// Releases the cells.
  void Clear();
  /// Replaces the cells by `newCount` new ones. Does nothing if `newCount` is 0.
  void Resize(std::uint16_t newCount);
};
