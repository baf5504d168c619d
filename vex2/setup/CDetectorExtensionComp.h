#pragma once

#include <string_view>

#include "vex2/container/CContainerComp.h"
#include "vex2/setup/Vex2Detector.h"

/// One detector in a document, "DETX": a list with one component for each field.
class VEX2_API CDetectorExtensionComp final : public CContainerComp {
 public:
  /// Makes an empty list.
  CDetectorExtensionComp();
  /// Makes a list with a child for each field of `detector`, in the order of the format. Empty
  /// texts and missing dates have no child.
  explicit CDetectorExtensionComp(const Vex2Detector& detector);

  /// Sets the fields of `detector` from the children. Fields without a child get their default. If
  /// several children hold the same field, the last one is used.
  void CopyTo(Vex2Detector& detector) const;

  /// The first name among the children; empty if there is none. Valid until the children change.
  std::string_view GetName() const;
};
