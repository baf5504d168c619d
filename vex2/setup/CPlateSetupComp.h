#pragma once

#include "vex2/container/CContainerComp.h"
#include "vex2/setup/CCellComp.h"
#include "vex2/setup/Vex2PlateSetup.h"

/// The plate setup in a document, "CELS": a list of "CELL" components, one a well.
class VEX2_API CPlateSetupComp final : public CContainerComp {
 public:
  /// Without cells.
  CPlateSetupComp();
  /// With a cell for each well of `setup`.
  explicit CPlateSetupComp(const Vex2PlateSetup& setup);

  /// Copies all cells into `setup`, in place of what it held.
  void CopyTo(Vex2PlateSetup& setup) const;

  bool IsPlateSetupComp() const override { return true; }
  /// New cells, as many as were counted, in place of the old ones.
  void AllocateBody() override;
  /// Reads cells, whatever their tags say. Unlike in other lists, one that is missing is a failure.
  int ReadChildren(CFile* file) override;
};
