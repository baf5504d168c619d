#pragma once

#include "vex2/container/CContainerComp.h"
#include "vex2/setup/CCellComp.h"
#include "vex2/setup/Vex2PlateSetup.h"

/// The plate setup in a document, "CELS": a list with one "CELL" component for each well.
class VEX2_API CPlateSetupComp final : public CContainerComp {
 public:
  /// Makes a list without cells.
  CPlateSetupComp();
  /// Makes a list with a cell for each well of `setup`.
  explicit CPlateSetupComp(const Vex2PlateSetup& setup);

  /// Replaces the content of `setup` by copies of all cells.
  void CopyTo(Vex2PlateSetup& setup) const;

  /// True.
  bool IsPlateSetupComp() const override { return true; }
  /// Replaces the cells by as many new ones as the count says.
  void AllocateBody() override;
  /// Reads as many cells as the count says, whatever their tags are. Unlike in other lists, a
  /// missing cell is a failure.
  int ReadChildren(CFile* file) override;
};
