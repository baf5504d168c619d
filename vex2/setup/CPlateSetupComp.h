#pragma once

#include "vex2/container/CContainerComp.h"
#include "vex2/setup/CCellComp.h"
#include "vex2/setup/Vex2PlateSetup.h"

/// The plate setup in a document, "CELS": a list with one "CELL" component for each well.
class VEX2_API CPlateSetupComp final : public CContainerComp {
 public:
  /// Without cells.
  CPlateSetupComp();
  /// With a cell for each well of `setup`.
  explicit CPlateSetupComp(const Vex2PlateSetup& setup);

  /// Replaces the content of `setup` by copies of all cells.
  void CopyTo(Vex2PlateSetup& setup) const;

  /// True.
  bool IsPlateSetupComp() const override { return true; }
  /// Replaces the cells by new ones, as many as the count says.
  void AllocateBody() override;
  /// Reads cells, whatever their tags are. Unlike in other lists, a missing cell is a failure.
  int ReadChildren(CFile* file) override;
};
