#pragma once

#include <cstdint>

#include "vex2/container/CContainerComp.h"
#include "vex2/setup/Vex2WellSetup.h"

/// One well of the plate setup in a document, "CELL": a list that stores the well's coordinates and
/// flag between its count and its children.
class VEX2_API CCellComp final : public CContainerComp {
 public:
  /// Makes a cell without children.
  CCellComp();
  /// Makes a cell with a child for each text of `well` that is not empty and one for each detector.
  explicit CCellComp(const Vex2WellSetup& well);

  /// Copies the cell into `well`, which must be new or reset. Sic: does not copy the description,
  /// because the code searches for it under a row of the tag table that no lookup returns. Hosts
  /// rely on this.
  void CopyTo(Vex2WellSetup& well) const;

  /// The first coordinate of the well, stored unchanged.
  std::uint16_t GetCoord1() const { return coord1_; }
  /// The second coordinate of the well, stored unchanged.
  std::uint16_t GetCoord2() const { return coord2_; }
  /// The stored byte: any value except 0 is true.
  std::uint8_t GetFlag() const { return flag_; }

  CComponent& Assign(const CComponent& source) override;
  int WriteBody(CFile* file) override;
  int ReadBody(CFile* file) override;

 private:
  std::uint16_t coord1_ = 0;
  std::uint16_t coord2_ = 0;
  std::uint8_t flag_ = 1;
};
