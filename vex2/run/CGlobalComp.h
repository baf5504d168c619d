#pragma once

#include "vex2/container/CContainerComp.h"
#include "vex2/run/Vex2GlobalComplex.h"

/// The run-wide settings in a document, "GLBL": a list with one component for each setting.
class VEX2_API CGlobalComp final : public CContainerComp {
 public:
  /// Makes an empty list.
  CGlobalComp();
  /// Makes a list with a child for each setting of `info`, in the order of the format; empty texts
  /// have no child.
  explicit CGlobalComp(const Vex2GlobalComplex& info);

  /// Copies every setting that has a child into `info` and leaves the others unchanged. The four
  /// one-byte settings are read as signed.
  void CopyTo(Vex2GlobalComplex& info) const;
};
