#pragma once

#include <cstdint>

#include "vex2/framework/CPtrList.h"
#include "vex2/framework/CTypedPtrList.h"
#include "vex2/framework/Export.h"
#include "vex2/setup/Vex2WellDetector.h"

/// The setup of one well, as callers pass it. Owns its texts and its detectors.
struct VEX2_API Vex2WellSetup {
  std::uint16_t coord1 = 0;            ///< two coordinates of the well, stored unchanged
  std::uint16_t coord2 = 0;            ///< stored unchanged
  bool flag = true;                    ///< stored as one byte
  char* name = nullptr;                ///< with a terminating zero, made with new[], or null
  std::int32_t nameLength = 0;         ///< characters
  char* description = nullptr;         ///< like `name`; stored, but never read back
  std::int32_t descriptionLength = 0;  ///< characters
  /// The record owns the entries, which are made with new.
  CTypedPtrList<CPtrList, Vex2WellDetector*> detectors;

  Vex2WellSetup() = default;
  Vex2WellSetup(const Vex2WellSetup&) = delete;
  Vex2WellSetup& operator=(const Vex2WellSetup&) = delete;
  ~Vex2WellSetup() { Reset(); }

  /// Releases the content and sets all fields to the values of a new record.
  void Reset();

  /// Copies `length` characters into a buffer that the record owns. Allocates a new buffer only if
  /// the text becomes longer. If `text` is null, sets only the length.
  void SetName(const char* text, std::int32_t length);
  /// Copies `length` characters into a buffer that the record owns. Allocates a new buffer only if
  /// the text becomes longer. If `text` is null, sets only the length. A setup that is read from a
  /// document has no descriptions.
  void SetDescription(const char* text, std::int32_t length);
};
