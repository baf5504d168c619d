#pragma once

#include <string_view>

#include "vex2/container/CContainerComp.h"
#include "vex2/setup/Vex2Detector.h"

/// One detector in a document, "DETX": a list of one component a field.
class VEX2_API CDetectorExtensionComp final : public CContainerComp {
 public:
  /// Without children.
  CDetectorExtensionComp();
  /// With a child for each field of `detector`, in the order in which they are written. Texts that
  /// are empty and dates that are none have no child.
  explicit CDetectorExtensionComp(const Vex2Detector& detector);

  /// Makes `detector` what the children say, and what a new one is where they say nothing. Of a
  /// field that is there twice the last one counts.
  void CopyTo(Vex2Detector& detector) const;

  /// The first name among the children, empty when there is none; valid until they change.
  std::string_view GetName() const;
};
