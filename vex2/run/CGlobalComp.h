#pragma once

#include "vex2/container/CContainerComp.h"
#include "vex2/run/Vex2GlobalComplex.h"

/// The run-wide settings in a document, "GLBL": a list of one component a setting.
class VEX2_API CGlobalComp final : public CContainerComp {
 public:
  /// Without children.
  CGlobalComp();
  /// With a child for each setting of `info`, in the order in which they are written; texts that
  /// are empty have none.
  explicit CGlobalComp(const Vex2GlobalComplex& info);

  /// Copies every setting that has a child into `info` and leaves the others as they are. The four
  /// one-byte settings come back with their sign.
  void CopyTo(Vex2GlobalComplex& info) const;
};
