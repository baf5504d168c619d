#pragma once

#include <string_view>

#include "vex2/container/CContainerComp.h"
#include "vex2/setup/Vex2Detector.h"

/// One detector in a document, "DETX": a list with one component for each field.
class VEX2_API CDetectorExtensionComp final : public CContainerComp {
 public:
  /// Without children.
  CDetectorExtensionComp();
  /// With a child for each field of `detector`, in the order of the format. Empty texts and missing
  /// dates have no child.
  explicit CDetectorExtensionComp(const Vex2Detector& detector);

  /// Sets the fields of `detector` from the children; fields without a child get their default. If
  /// a field occurs twice, the last one counts.
  void CopyTo(Vex2Detector& detector) const;

  /// The first name among the children, empty if there is none; valid until they change.
  std::string_view GetName() const;
};
