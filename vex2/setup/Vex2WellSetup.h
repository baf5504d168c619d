#pragma once

#include <cstdint>

#include "vex2/framework/CPtrList.h"
#include "vex2/framework/CTypedPtrList.h"
#include "vex2/framework/Export.h"
#include "vex2/setup/Vex2WellDetector.h"

/// What stands in one well, as a caller exchanges it. Owns its texts and its detectors.
struct VEX2_API Vex2WellSetup {
  std::uint16_t coord1 = 0;  ///< two coordinates of the well, kept as given
  std::uint16_t coord2 = 0;
  bool flag = true;
  char* name = nullptr;                ///< with a terminating zero, made with new[], or null
  std::int32_t nameLength = 0;         ///< characters
  char* description = nullptr;         ///< as `name`; documents keep it, but do not give it back
  std::int32_t descriptionLength = 0;  ///< characters
  /// Each entry is made with new and belongs to the record.
  CTypedPtrList<CPtrList, Vex2WellDetector*> detectors;

  Vex2WellSetup() = default;
  Vex2WellSetup(const Vex2WellSetup&) = delete;
  Vex2WellSetup& operator=(const Vex2WellSetup&) = delete;
  ~Vex2WellSetup() { Reset(); }

  /// Makes the record what a new one is, and releases what it held.
  void Reset();

  /// As `Vex2WellDetector::SetTask`.
  void SetName(const char* text, std::int32_t length);
  void SetDescription(const char* text, std::int32_t length);
};
